#include "host/CachedLists.h"

#include <string>

#include "TavloUtility.h"
#include "cache/KeyedArchive.h"
#include "platform/Platform.h"

namespace tavlo::host {
namespace {

[[noreturn]] void fail(CachedList list, const std::string& why) {
  throw CachedListError(std::string(fileName(list)) + " was not written: " + why);
}

std::string archiveOf(CachedList list, const Value& value) {
  const bool isNothing = value.ifUid() && value.ifUid()->index == 0;
  try {
    return keyed_archive::encode(isNothing ? std::nullopt : std::optional(value));
  } catch (const ArchiveError& error) {
    fail(list, std::string(error.what()) + "; give a value that a keyed archive of at most " +
                   std::to_string(keyed_archive::kLargestArchive) + " bytes can hold");
  }
}

}  // namespace

const char* fileName(CachedList list) { return list == CachedList::video ? "VideoListAPI" : "InterstitialListAPI"; }

void writeCachedList(CachedList list, const Value& value) {
  const std::string archive = archiveOf(list, value);
  const Text path = TavloUtility::getDocumentDirectoryPath(fileName(list));
  if (!path) {
    fail(list,
         "there is no cache directory for it, and none could be made; the log says why; check the rights to the "
         "Documents directory and the free space");
  }
  const auto written = platform::current()->fileManager().writeToFileAtomically(archive, path, platform::Durable::name);
  if (!written) fail(list, written.description() + "; check the rights to " + *path + " and the free space");
}

}  // namespace tavlo::host
