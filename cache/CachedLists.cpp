#include <string>
#include <vector>

#include "TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "cache/KeyedArchive.h"
#include "cache/SortByStartDate.h"
#include "common/Logger.h"
#include "common/Path.h"
#include "platform/Platform.h"

namespace tavlo {
namespace {

using platform::FileManager;
using platform::Removal;

constexpr std::string_view kNoList = "getFileData() - ERROR: This file  does not exist";

void clear(FileManager& files) {
  const Text directory = cacheDirectory(files);
  auto names = files.contentsOfDirectoryAtPath(directory);
  if (!names) return;
  std::erase(*names, kLogFileName);
  files.removeItemsOfDirectoryAtPath(directory, *names);
}

std::optional<Value> decodedList(const std::string& path, std::string_view bytes) {
  try {
    return keyed_archive::decode(bytes);
  } catch (const ArchiveError& error) {
    throw ArchiveError(path + ": " + error.what());
  }
}

}  // namespace

std::optional<Value> TavloUtility::getCachedVideoList(bool isVideo) {
  const auto platform = platform::current();
  FileManager& files = platform->fileManager();
  const Text path = pathInCacheDirectory(files, isVideo ? kVideoListName : kInterstitialListName);
  if (!path) return std::nullopt;
  if (!files.fileExistsAtPath(path)) {
    clear(files);  // deliberate: without this list everything else in the cache is of no use
    Logger::printLog(kNoList);
    return std::nullopt;
  }
  const auto bytes = files.dataWithContentsOfFile(path);
  return bytes ? decodedList(*path, *bytes) : std::nullopt;
}

bool TavloUtility::deleteCachedVideo(const Text& path) {
  return static_cast<bool>(platform::current()->fileManager().removeItemAtPath(path, Removal::anything));
}

void TavloUtility::clearCache() { clear(platform::current()->fileManager()); }

std::optional<Value> TavloUtility::sortCacahedVideoDates(const std::optional<Value>& list) {
  if (!list) return std::nullopt;
  const ValueList* const records = list->ifList() ? list->ifList() : list->ifSet();
  return records ? std::optional<Value>(Value::list(sortedByStartDate(*records))) : std::nullopt;
}

}  // namespace tavlo
