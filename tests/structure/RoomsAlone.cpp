// The rooms with no platform, no host and no library beside them: every operation answers, and what would
// have come from outside is absent.
#include <iostream>
#include <string>

#include "TavloUtility.h"
#include "common/Logger.h"
#include "common/TavloException.h"
#include "platform/Platform.h"

namespace {

std::string shown(const tavlo::Text& text) { return text ? '"' + *text + '"' : "absent"; }

}  // namespace

int main() {
  using Tavlo = tavlo::TavloUtility;
  Tavlo::setAppIdToUserDefault("app-1");
  Tavlo::setOptionalIdToUserDefault("optional-1");
  Tavlo::setSecurityKeyToUserDefault("key-1");
  tavlo::Logger::printLog("dropped");
  tavlo::TavloException::tavloException("dropped");

  const tavlo::Value payload = Tavlo::trackerNetworkSessionData();
  std::cout << "app id " << shown(Tavlo::getAppIdFromUserDefault()) << '\n'
            << "optional id " << shown(Tavlo::getOptionalIdFromUserDefault()) << '\n'
            << "security key " << shown(Tavlo::getSecurityKeyTFromUserDefault()) << '\n'
            << "synchronize " << tavlo::platform::current()->standardUserDefaults().synchronize() << '\n'
            << "ad " << Tavlo::getAdditionalRequestingString().size() << '\n'
            << "in-app " << Tavlo::getInAppNotificationAdditionalRequest().size() << '\n'
            << "user " << Tavlo::getUserInfoRequestString() << '\n'
            << "tracker " << payload.ifMap()->size() << '\n'
            << "md5 " << shown(Tavlo::md5(tavlo::Value("abc"))) << '\n'
            << "extension " << shown(Tavlo::getFileExtensionFromUrl("https://host/clip.mp4?x=1")) << '\n';
}
