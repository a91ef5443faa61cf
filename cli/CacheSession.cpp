#include "cli/CacheSession.h"

#include "cache/CacheDirectory.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

fs::path documentsFolder(const Place& place) { return place.folder() / "Documents"; }

}  // namespace

fs::path cacheFolder(const Place& place) { return documentsFolder(place) / kCacheDirectoryName; }

CacheSession::CacheSession(const Run& run, const linux_platform::Options& outside) : run_(run), place_(run.globals) {
  platform::install(place_.makePlatform(outside));
  Logger::install(std::make_shared<CacheLog>(documentsFolder(place_), [last = lastLine_](std::string_view line) {
    const std::lock_guard lock(last->mutex);
    last->text = line;
  }));
}

void CacheSession::answer(const Text& text) const {
  answerText(text, run_);
  if (!text) noteWhyAbsent();
}

void CacheSession::noteWhyAbsent() const {
  const std::string line = lastLine();
  run_.output.note(line.empty() ? "there is no place for the cache: " + documentsFolder(place_).string() +
                                      " is missing and cannot be made"
                                : line);
}

void CacheSession::noteLastLine() const {
  if (const std::string line = lastLine(); !line.empty()) run_.output.note(line);
}

std::string CacheSession::lastLine() const {
  const std::lock_guard lock(lastLine_->mutex);
  return lastLine_->text;
}

}  // namespace tavlo::cli
