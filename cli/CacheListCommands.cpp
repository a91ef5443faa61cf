// cache list, put-list and sort.
#include <filesystem>
#include <optional>
#include <string>

#include "TavloUtility.h"
#include "cache/KeyedArchive.h"
#include "cli/ArchiveJson.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/Input.h"
#include "cli/Json.h"
#include "common/Format.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestFile = kLongestArchiveJson;

std::optional<Value> readJsonList(const std::string& file) {
  try {
    return parseArchiveJson(readInput(file, kLongestFile));
  } catch (const JsonError& error) {
    throw Failure(inputName(file) + ":" + std::to_string(error.line()) + ": " + error.what());
  }
}

// The whole text is made before anything is printed.
void answerValue(const std::optional<Value>& value, const Run& run) {
  if (run.globals.json) return run.output.answerLine(toArchiveJson(value, ArchiveLayout::oneLine));
  run.output.answerLine(value ? toArchiveJson(value, ArchiveLayout::indented) : std::string(kAbsent));
}

// A file that is there and cannot be read must not pass for a list that is nothing.
void requireReadable(const std::string& path) {
  const auto platform = platform::current();
  platform::FileManager& files = platform->fileManager();
  if (files.fileExistsAtPath(path) && !files.dataWithContentsOfFile(path)) {
    throw Failure("cannot read " + path + "; check that it is a regular file, and the rights to it");
  }
}

std::string pathOf(host::CachedList list, const CacheSession& session) {
  return (session.folder() / host::fileName(list)).string();
}

}  // namespace

void execute(const PrintCachedList& command, const Run& run) {
  const CacheSession session(run);
  const std::string path = pathOf(command.list, session);
  try {
    const auto list = TavloUtility::getCachedVideoList(command.list == host::CachedList::video);
    if (!list) requireReadable(path);
    answerValue(list, run);
    if (list || fs::exists(path)) return;
  } catch (const ArchiveError& error) {
    throw Failure(std::string(error.what()) + "; write a new list with put-list, or remove this one");
  } catch (const ArchiveTooLarge& error) {
    throw Failure(path + " cannot be printed: " + error.what() +
                  " (what is shared counts each time); apps can read it all the same, and put-list replaces it");
  }
  session.noteWhyAbsent();
  if (fs::exists(session.folder())) {
    run.output.note("without " + path + " the cache has been cleared, all but the log file, as in an app");
  }
}

void execute(const PutCachedList& command, const Run& run) {
  const auto list = readJsonList(command.file);
  const CacheSession session(run);
  try {
    host::writeCachedList(command.list, list.value_or(Uid{}));
  } catch (const host::CachedListError& error) {
    if (!fs::exists(session.folder())) session.noteLastLine();  // why it was not made
    throw Failure(error.what());
  }
  answerText(pathOf(command.list, session), run);
}

void execute(const SortList& command, const Run& run) {
  const auto list = readJsonList(command.file);
  if (list && !list->ifList() && !list->ifSet()) {
    throw Failure(inputName(command.file) +
                  " holds no list; give [...] or {\"$set\": [...]}, as tavlo cache list prints it");
  }
  answerValue(TavloUtility::sortCacahedVideoDates(list), run);
}

}  // namespace tavlo::cli
