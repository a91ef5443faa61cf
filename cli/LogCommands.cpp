// log show and tail: the SDK's log file.
#include <poll.h>

#include <memory>
#include <string>

#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/Interrupt.h"
#include "cli/Json.h"
#include "cli/LogFile.h"
#include "cli/Place.h"
#include "common/Path.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

fs::path logFile(const Run& run) { return cacheFolder(Place(run.globals)) / kLogFileName; }

void noteMissing(const fs::path& path, const Run& run) {
  run.output.note("there is no log yet: " + path.string() +
                  "; the SDK's operations write it once the cache directory is there, as tavlo cache fetch does");
}

void answerLines(LogFile& file, const Run& run) {
  const auto take = [&](std::string_view line) { run.output.answerLine(harmless(line)); };
  file.takeLines(take);
  file.takeRest(take);
}

void answerJson(LogFile* file, const Run& run) {
  run.output.answer("[");
  const char* separator = "";
  const auto take = [&](std::string_view line) {
    const auto [time, message] = splitLogLine(line);
    run.output.answer(separator);
    run.output.answer(toJson(Value::map({{"time", time.empty() ? Value() : Value(time)}, {"message", message}})));
    separator = ",";
  };
  if (file) {
    file->takeLines(take);
    file->takeRest(take);
  }
  run.output.answerLine("]");
}

// Until it is interrupted. A log that is made anew is read from its beginning.
void follow(std::unique_ptr<LogFile> file, const fs::path& path, const Run& run) {
  constexpr int kPause = 200;  // milliseconds
  const Interrupt interrupt;
  const auto take = [&](std::string_view line) { run.output.answerLine(harmless(line)); };
  for (;;) {
    if (file) file->takeLines(take);
    run.output.finish();
    pollfd watched{.fd = interrupt.descriptor(), .events = POLLIN, .revents = 0};
    if (::poll(&watched, 1, kPause) > 0) break;
    if (file && !file->isOutdated()) continue;
    if (file) {
      file->takeLines(take);
      file->takeRest(take);
    }
    file = LogFile::open(path);
  }
  if (file) file->takeRest(take);
}

}  // namespace

void execute(const ShowLog& command, const Run& run) {
  if (command.follow && run.globals.json) throw UsageError("--follow has no JSON", "tavlo log tail");
  const fs::path path = logFile(run);
  auto file = LogFile::open(path);
  if (!file) noteMissing(path, run);
  if (file && command.last) file->seekToLast(*command.last);
  if (command.follow) return follow(std::move(file), path, run);
  if (run.globals.json) return answerJson(file.get(), run);
  if (file) answerLines(*file, run);
}

}  // namespace tavlo::cli
