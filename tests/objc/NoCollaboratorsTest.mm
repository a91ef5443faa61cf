// In this program there are none of the SDK's own classes, and nothing of UIKit or CoreLocation.
#include <gmock/gmock.h>

#include "common/Logger.h"
#include "common/TavloException.h"
#include "objc/Collaborators.h"
#import "objc/TavloUtility.h"
#import "platform/apple/ApplePlatform.h"
#import "platform/apple/Bridge.h"
#include "request/DataBaseHandler.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"
#include "tests/objc/PoolTest.h"

namespace tavlo::test {
namespace {

class ObjCWithoutCollaborators : public PoolTest {};

TEST_F(ObjCWithoutCollaborators, TheirSlotsStayEmpty) {
  static_cast<void>([::TavloUtility class]);
  objc::adoptCollaborators();

  EXPECT_EQ(tavlo::TavloPackage::sharedInstance(), nullptr);
  EXPECT_EQ(tavlo::TavloUniqueUserHandler::installed(), nullptr);
  EXPECT_EQ(tavlo::DataBaseHandler::sharedInastance(), nullptr);
  EXPECT_EQ(tavlo::Logger::installed(), nullptr);
  EXPECT_EQ(tavlo::TavloException::installed(), nullptr);
}

TEST_F(ObjCWithoutCollaborators, EveryRequestIsBuilt) {
  EXPECT_EQ([[::TavloUtility getAdditionalRequestingString:nil] length], 737U);
  EXPECT_EQ([[::TavloUtility trackerNetworkSessionData] count], 35U);
  EXPECT_EQ([::TavloUtility md5:[NSNull null]], nil);
}

TEST_F(ObjCWithoutCollaborators, ServicesOfMissingFrameworksAreNotAvailable) {
  const auto platform = apple_platform::make();

  EXPECT_FALSE(platform->locationServices().locationServicesEnabled());
  EXPECT_EQ(platform->images().imageWithContentsOfFile("/tmp/a.png"), nullptr);
  EXPECT_FALSE(platform->sharedApplication().canOpenURL("http://h"));
  const auto controller = platform->sharedApplication().interactionControllerWithURL("file:///tmp/a");
  EXPECT_FALSE(controller->presentOpenInMenuFromRect({}, nullptr, true));
  Text error;
  platform->makeGeocoder()->reverseGeocodeLocation(std::nullopt, [&](const auto&, const Text& e) { error = e; });
  EXPECT_EQ(error, "there is no geocoder");
}

}  // namespace
}  // namespace tavlo::test
