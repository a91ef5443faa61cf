// Refers to every operation and calls none, so that a linker that drops the rest leaves what they need.
#include <cstddef>
#include <iterator>

#include "TavloUtility.h"

namespace {

using Address = void (*)();

template <typename Function>
Address addressOf(Function* function) {
  return reinterpret_cast<Address>(function);
}

}  // namespace

int main(int count, char** /*arguments*/) {
  using Tavlo = tavlo::TavloUtility;
  const volatile Address operations[] = {
      addressOf(&Tavlo::getAdditionalRequestingString),
      addressOf(&Tavlo::trackerNetworkSessionData),
      addressOf(&Tavlo::getInAppNotificationAdditionalRequest),
      addressOf(&Tavlo::getUserInfoRequestString),
      addressOf(&Tavlo::getDocumentDirectoryPath),
      addressOf(&Tavlo::getCacheVideoDataPath),
      addressOf(&Tavlo::getCacheVideoPathOfSavedInDB),
      addressOf(&Tavlo::getCachedVideoList),
      addressOf(&Tavlo::deleteCachedVideo),
      addressOf(&Tavlo::clearCache),
      addressOf(&Tavlo::sortCacahedVideoDates),
      addressOf(&Tavlo::getCacheBannerImagePath),
      addressOf(&Tavlo::cachedBannerImage),
      addressOf(&Tavlo::setAppIdToUserDefault),
      addressOf(&Tavlo::setOptionalIdToUserDefault),
      addressOf(&Tavlo::setSecurityKeyToUserDefault),
      addressOf(&Tavlo::getAppIdFromUserDefault),
      addressOf(&Tavlo::getOptionalIdFromUserDefault),
      addressOf(&Tavlo::getSecurityKeyTFromUserDefault),
      addressOf(&Tavlo::fetchCurrentLocation),
      addressOf(&Tavlo::frameworkBundle),
      addressOf(&Tavlo::getVolumeImage),
      addressOf(&Tavlo::getMuteImage),
      addressOf(&Tavlo::getExportTavloSDKLog),
      addressOf(&Tavlo::quillmixInstalledOnThisDevice),
      addressOf(&Tavlo::md5),
      addressOf(&Tavlo::getFileExtensionFromUrl),
  };
  static_assert(std::size(operations) == 27);
  return operations[static_cast<std::size_t>(count) % std::size(operations)] ? 0 : 1;
}
