// cache path, video, saved, banner, delete and clear.
#include "TavloUtility.h"
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

void execute(const ClearCache& /*command*/, const Run& run) {
  const CacheSession session(run);
  TavloUtility::clearCache();
}

}  // namespace tavlo::cli
