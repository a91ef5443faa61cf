#include "TavloUtility.h"
#include "common/NotBuiltYet.h"

namespace tavlo {

std::shared_ptr<platform::Bundle> TavloUtility::frameworkBundle() { notBuiltYet("frameworkBundle"); }
std::shared_ptr<const platform::Image> TavloUtility::getVolumeImage() { notBuiltYet("getVolumeImage"); }
std::shared_ptr<const platform::Image> TavloUtility::getMuteImage() { notBuiltYet("getMuteImage"); }
void TavloUtility::getExportTavloSDKLog(platform::ViewController*) { notBuiltYet("getExportTavloSDKLog"); }
bool TavloUtility::quillmixInstalledOnThisDevice() { notBuiltYet("quillmixInstalledOnThisDevice"); }

}  // namespace tavlo
