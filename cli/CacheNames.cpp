#include "cli/CacheNames.h"

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "common/Logger.h"
#include "platform/Platform.h"

namespace tavlo::cli {
namespace {

using platform::FileResult;

// Has an empty cache directory, downloads that are there at once, and keeps the last path that was asked for or
// written.
class NoticingPlatform final : public platform::Platform,
                               public platform::FileManager,
                               public platform::BackgroundQueue,
                               public platform::UrlData {
 public:
  platform::FileManager& fileManager() override { return *this; }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return *this; }

  Text documentDirectory() override { return "/"; }
  platform::Existence fileExistsAtPathIsDirectory(const Text& path) override {
    if (path == folder_) return platform::Existence::directory;
    last_ = path;
    return platform::Existence::missing;
  }
  FileResult removeItemAtPath(const Text&, platform::Removal) override { return FileResult::success(); }
  FileResult createDirectoryAtPath(const Text&) override { return FileResult::success(); }
  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text&) override { return std::nullopt; }
  std::optional<std::string> dataWithContentsOfFile(const Text&) override { return std::nullopt; }
  FileResult writeToFileAtomically(std::string_view, const Text& path, platform::Durable) override {
    last_ = path;
    return FileResult::success();
  }

  void dispatchAsync(std::function<void()> task) override { task(); }
  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override { return ""; }

  [[nodiscard]] Text takeName() {
    const Text path = std::exchange(last_, std::nullopt);
    return path ? Text(path->substr(folder_.size() + 1)) : std::nullopt;
  }

 private:
  const std::string folder_ = std::string("/").append(kCacheDirectoryName);
  Text last_;
};

}  // namespace

CacheNames cacheNamesOf(const std::string& url) {
  const auto noticing = std::make_shared<NoticingPlatform>();
  platform::install(noticing);
  Logger::install(nullptr);
  CacheNames names;
  static_cast<void>(TavloUtility::getCacheVideoDataPath(url));
  names.video = noticing->takeName();
  TavloUtility::cachedBannerImage(url);
  names.bannerWritten = noticing->takeName();
  static_cast<void>(TavloUtility::getCacheBannerImagePath(url));
  names.bannerLookedUp = noticing->takeName();
  platform::install(nullptr);
  return names;
}

}  // namespace tavlo::cli
