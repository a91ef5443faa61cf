#include "TavloUtility.h"
#include "common/NotBuiltYet.h"

namespace tavlo {

Text TavloUtility::getDocumentDirectoryPath(std::string_view) { notBuiltYet("getDocumentDirectoryPath"); }
Text TavloUtility::getCacheVideoDataPath(const Text&) { notBuiltYet("getCacheVideoDataPath"); }
Text TavloUtility::getCacheVideoPathOfSavedInDB(const Text&) { notBuiltYet("getCacheVideoPathOfSavedInDB"); }
std::optional<Value> TavloUtility::getCachedVideoList(bool) { notBuiltYet("getCachedVideoList"); }
bool TavloUtility::deleteCachedVideo(const Text&) { notBuiltYet("deleteCachedVideo"); }
void TavloUtility::clearCache() { notBuiltYet("clearCache"); }
std::optional<Value> TavloUtility::sortCacahedVideoDates(const std::optional<Value>&) {
  notBuiltYet("sortCacahedVideoDates");
}
Text TavloUtility::getCacheBannerImagePath(const Text&) { notBuiltYet("getCacheBannerImagePath"); }
void TavloUtility::cachedBannerImage(const Text&) { notBuiltYet("cachedBannerImage"); }

}  // namespace tavlo
