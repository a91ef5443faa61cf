#include "cache/CacheDirectory.h"

#include <cstddef>
#include <string>
#include <utility>

#include "TavloUtility.h"
#include "cache/UrlText.h"
#include "common/Format.h"
#include "common/Logger.h"
#include "common/Md5.h"
#include "common/Path.h"
#include "platform/Platform.h"

namespace tavlo {
namespace {

using platform::Existence;
using platform::FileManager;

constexpr std::string_view kInTheWay = "TavloCache directory is actually a file! .. removing it";
constexpr std::string_view kStillInTheWay =
    "TavloCache directory is actually a file! .. but failed removing it error: ";
constexpr std::string_view kNotCreated = "Couldn't create directory TavloCache error: ";
constexpr std::string_view kCreated = "TavloCache directory created!";
constexpr std::string_view kPath = "Cached directory path : ";

constexpr std::string_view kNoUrl = "getCacheVideoDataPath() - ERROR: Passed file url parameter is nil";
constexpr std::string_view kNoVideo = "getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist";
constexpr std::string_view kNoName = "getCacheVideoPathOfSavedInDB() - ERROR: Passed file url parameter is nil";
constexpr std::string_view kNoSavedVideo = "getCacheVideoPathOfSavedInDB() - ERROR: Cache Video Data  does not exist";

void logWith(std::string_view message, std::string_view detail) {
  const auto logger = Logger::installed();
  if (!logger) return;  // nor is there a line to build
  std::string line;
  line.reserve(message.size() + detail.size());
  logger->writeLine(line.append(message).append(detail));
}

// False: what is in the way of the directory could not be removed. Were it a directory by now, made by another
// thread, its removal would take along what that thread has put there, so it must fail.
bool removeFileInTheWay(FileManager& files, const Text& directory) {
  Logger::printLog(kInTheWay);
  const auto removed = files.removeItemAtPath(directory, platform::Removal::fileOnly);
  if (!removed) logWith(kStillInTheWay, removed.description());
  return static_cast<bool>(removed);
}

bool createDirectory(FileManager& files, const Text& directory) {
  const auto created = files.createDirectoryAtPath(directory);
  if (created) {
    Logger::printLog(kCreated);
  } else {
    logWith(kNotCreated, created.description());
  }
  return static_cast<bool>(created);
}

// The path of an entry that is there; else absent, and the message is logged.
Text existingPath(FileManager& files, std::string_view fileName, std::string_view message) {
  Text path = pathInCacheDirectory(files, fileName);
  if (!path || files.fileExistsAtPath(path)) return path;
  Logger::printLog(message);
  return std::nullopt;
}

// The extension is that of the text as it was passed, also where the digest is that of the cleaned one.
std::string videoName(const Text& url) {
  constexpr std::size_t kLongestUsual = 48;  // 32 digits, a dot, an extension
  std::string room;
  std::string name;
  name.reserve(kLongestUsual);
  appendMd5OfText(name, cleanedUrl(*url, room));
  name += '.';
  appendText(name, TavloUtility::getFileExtensionFromUrl(url));
  return name;
}

}  // namespace

Text cacheDirectory(FileManager& files) {
  return appendedPathComponent(files.documentDirectory(), kCacheDirectoryName);
}

Text pathInCacheDirectory(FileManager& files, std::string_view fileName) {
  Text directory = cacheDirectory(files);
  Existence found = files.fileExistsAtPathIsDirectory(directory);
  if (found == Existence::file) {
    if (!removeFileInTheWay(files, directory)) return std::nullopt;
    found = Existence::missing;
  }
  if (found == Existence::missing && !createDirectory(files, directory)) return std::nullopt;
  Text path = appendedPathComponent(std::move(directory), fileName);
  logWith(kPath, path ? std::string_view(*path) : kAbsent);
  return path;
}

Text TavloUtility::getDocumentDirectoryPath(std::string_view fileName) {
  return pathInCacheDirectory(platform::current()->fileManager(), fileName);
}

Text TavloUtility::getCacheVideoDataPath(const Text& url) {
  if (!url || url->empty()) {
    Logger::printLog(kNoUrl);
    return std::nullopt;
  }
  return existingPath(platform::current()->fileManager(), videoName(url), kNoVideo);
}

Text TavloUtility::getCacheVideoPathOfSavedInDB(const Text& name) {
  if (!name || name->empty()) {
    Logger::printLog(kNoName);
    return std::nullopt;
  }
  return existingPath(platform::current()->fileManager(), *name, kNoSavedVideo);
}

}  // namespace tavlo
