// cache path, video, saved, banner, delete and clear.
#include <algorithm>

#include "TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "cli/CacheEntries.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/Json.h"

namespace tavlo::cli {
namespace {

Text answerTo(const LookUpInCache& command) {
  switch (command.lookUp) {
    case CacheLookUpName::path: return TavloUtility::getDocumentDirectoryPath(command.text);
    case CacheLookUpName::video: return TavloUtility::getCacheVideoDataPath(command.text);
    case CacheLookUpName::saved: return TavloUtility::getCacheVideoPathOfSavedInDB(command.text);
    case CacheLookUpName::banner: return TavloUtility::getCacheBannerImagePath(command.text);
  }
  return std::nullopt;
}

}  // namespace

void execute(const LookUpInCache& command, const Run& run) { CacheSession(run).answer(answerTo(command)); }

void execute(const DeleteCached& command, const Run& run) {
  const CacheSession session(run);
  if (!TavloUtility::deleteCachedVideo(command.path)) {
    throw Failure("nothing was removed at \"" + command.path +
                  "\"; give the whole path of something that is there, and check the rights to its folder");
  }
  if (run.globals.json) run.output.answerLine(toJson(true));
}

// The operation says nothing of what it could not remove.
void execute(const ClearCache& /*command*/, const Run& run) {
  const CacheSession session(run);
  TavloUtility::clearCache();
  const auto left = cacheEntries(session.folder());
  if (!left) return;
  const auto isLog = [](const CacheEntry& entry) { return entry.name == kLogFileName; };
  const auto other = std::find_if_not(left->begin(), left->end(), isLog);
  if (other != left->end()) {
    throw Failure("\"" + other->name + "\" is still, or again, in " + session.folder().string() +
                  "; check the rights to it, and what else writes there");
  }
}

}  // namespace tavlo::cli
