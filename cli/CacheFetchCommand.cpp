// cache fetch: banner images downloaded into the cache, waited for.
#include <filesystem>
#include <string>
#include <utility>

#include "cli/ArchiveJson.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "cli/Downloads.h"
#include "cli/Errors.h"
#include "cli/Interrupt.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

std::string progressText(const DownloadCounts& counts) {
  return std::to_string(counts.done) + "/" + std::to_string(counts.all) + " done, " + std::to_string(counts.bytes) +
         " bytes, " + std::to_string(counts.failed) + " failed";
}

std::string nameOf(const Download& download) {
  return download.isStored && download.path ? fs::path(*download.path).filename().string() : "-";
}

const char* stateOf(const Download& download) {
  if (download.isStored) return "stored";
  return download.isDone ? "FAILED" : "not done";
}

void answer(const std::vector<Download>& downloads, const Run& run) {
  if (!run.globals.json) {
    std::vector<std::vector<Cell>> rows{headings({"result", "bytes", "name", "URL"})};
    for (const Download& download : downloads) {
      rows.push_back({{.text = stateOf(download)},
                      {.text = download.bytes ? std::to_string(*download.bytes) : "-"},
                      {.text = nameOf(download)},
                      {.text = displayed(download.url)}});
    }
    return run.output.answer(table(rows, run.output.tableLook()));
  }
  ValueList list;
  for (const Download& download : downloads) {
    ValueList lines;
    for (const std::string& line : download.lines) lines.emplace_back(line);
    list.push_back(Value::map({{"url", download.url},
                               {"stored", download.isStored},
                               {"bytes", download.bytes ? Value(*download.bytes) : Value(Uid{})},
                               {"path", download.isStored && download.path ? Value(*download.path) : Value(Uid{})},
                               {"log", Value::list(std::move(lines))}}));
  }
  run.output.answerLine(toArchiveJson(Value::list(std::move(list)), ArchiveLayout::oneLine));
}

// All URLs that are not stored, each with the last line that was logged. Of many, a message shows the first.
std::string failuresOf(const std::vector<Download>& downloads) {
  std::string text;
  for (const Download& download : downloads) {
    if (download.isStored) continue;
    text += (text.empty() ? "" : ", ") + cli::quoted(download.url);
    if (!download.lines.empty()) text += " (" + download.lines.back() + ")";
  }
  return text;
}

}  // namespace

void execute(const FetchBanners& command, const Run& run) {
  const Place place(run.globals);
  bool allAreDone = false;
  std::vector<Download> downloads;
  DownloadCounts counts;
  {
    const Interrupt interrupt;  // before there are other threads
    Downloads running(place.makePlatform(), cacheFolder(place).parent_path().string());
    running.start(command.urls);
    allAreDone = running.wait(interrupt.descriptor(),
                              [&](const DownloadCounts& now) { run.output.progress(progressText(now)); });
    downloads = running.all();
    counts = running.counts();
  }
  run.output.endProgress(progressText(counts));
  answer(downloads, run);
  const std::string all = std::to_string(counts.all);
  if (!allAreDone) {
    throw Failure("interrupted; run it again for what is not stored of " + all +
                  " downloads: " + failuresOf(downloads));
  }
  if (counts.failed > 0) {
    throw Failure(std::to_string(counts.failed) + " of " + all +
                  " downloads failed; check the URLs, the network, and the rights to " + cacheFolder(place).string() +
                  ": " + failuresOf(downloads));
  }
}

}  // namespace tavlo::cli
