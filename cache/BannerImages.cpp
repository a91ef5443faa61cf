#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "cache/UrlText.h"
#include "common/Logger.h"
#include "common/Md5.h"
#include "platform/Platform.h"

namespace tavlo {
namespace {

using platform::Durable;
using platform::Platform;

constexpr std::string_view kNoData = "getAndSaveBannerImage(): Passed data is empty";
constexpr std::string_view kWritten = "getAndSaveBannerImage() - write successfully";
constexpr std::string_view kNotWritten = "getAndSaveBannerImage(): ERROR - write failed";

constexpr std::string_view kNoUrl = "getCacheBannerImagePath() - ERROR: Passed file url parameter is nil";
constexpr std::string_view kNoImage = "getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist";

// The name of an image is the digest alone, whatever its format.
std::string imageName(std::string_view url) { return md5OfText(url); }

// A server chooses how much memory an image takes, so running out of it is a failed download.
std::optional<std::string> fetched(Platform& platform, const Text& url) try {
  return url ? platform.urlData().dataWithContentsOfUrl(*url) : std::nullopt;
} catch (const std::bad_alloc&) {
  return std::nullopt;
}

// Whether the image was written; absent when there is no directory for it.
std::optional<bool> written(Platform& platform, std::string_view data, std::string_view url) try {
  platform::FileManager& files = platform.fileManager();
  const Text path = pathInCacheDirectory(files, imageName(url));
  if (!path) return std::nullopt;
  return static_cast<bool>(files.writeToFileAtomically(data, path, Durable::contents));
} catch (const std::bad_alloc&) {
  return false;
}

void getAndSaveBannerImage(Platform& platform, const Text& url) {
  const auto data = fetched(platform, url);
  if (!data) return Logger::printLog(kNoData);
  const auto isWritten = written(platform, *data, *url);
  if (isWritten) Logger::printLog(*isWritten ? kWritten : kNotWritten);
}

}  // namespace

// The task does not keep its platform alive: a platform that is taken out takes the tasks along that have not
// begun.
void TavloUtility::cachedBannerImage(const Text& url) {
  const auto platform = platform::current();
  const Text trimmed = url ? Text(trimmedOfWhitespace(*url)) : std::nullopt;
  platform->backgroundQueue().dispatchAsync([trimmed, weak = std::weak_ptr<Platform>(platform)] {
    if (const auto kept = weak.lock()) getAndSaveBannerImage(*kept, trimmed);
  });
}

// Without a directory the path is absent, no file exists at it, and the look-up says so.
Text TavloUtility::getCacheBannerImagePath(const Text& url) {
  std::string room;
  const std::string_view cleaned = url ? cleanedUrl(*url, room) : std::string_view();
  if (cleaned.empty()) {
    Logger::printLog(kNoUrl);
    return std::nullopt;
  }
  const auto platform = platform::current();
  platform::FileManager& files = platform->fileManager();
  Text path = pathInCacheDirectory(files, imageName(cleaned));
  if (files.fileExistsAtPath(path)) return path;
  Logger::printLog(kNoImage);
  return std::nullopt;
}

}  // namespace tavlo
