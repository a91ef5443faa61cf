// The SDK's own classes as collaborators: what they are asked, in which order, and what they raise.
#include <gmock/gmock.h>

#include <memory>
#include <string>

#import "platform/apple/ExceptionGuard.h"
#include "request/PackageReads.h"
#include "tests/objc/AppTest.h"
#include "tests/support/RecordingCollaborators.h"

// A string whose characters cannot be had.
@interface BrokenString : NSString
@end

@implementation BrokenString
- (NSUInteger)length {
  [NSException raise:NSInternalInconsistencyException format:@"no length"];
  return 0;
}
- (unichar)characterAtIndex:(NSUInteger)index {
  static_cast<void>(index);
  return 'x';
}
@end

namespace tavlo::test {
namespace {

using testing::ElementsAre;

constexpr const char* kReport = "tavloException:md5:() Invalid string for passed for hash";

class ObjCCollaborators : public AppTest {};

TEST_F(ObjCCollaborators, AdRequestAsksForThePackageOnceAndReadsInTheContractsOrder) {
  static_cast<void>([::TavloUtility getAdditionalRequestingString:nil]);

  EXPECT_THAT(
      calls().take(),
      ElementsAre("TavloPackage sharedInstance", "applicationId", "os_version", "app_version", "device_id", "timestamp",
                  "app_bundle_name", "token", "advertisingID", "limitAdTrackingEnabled", "mac_address", "device_type",
                  "mobile_no", "email_address", "connection_type", "screen_density_x", "screen_density_y",
                  "screen_height", "carrier_name", "screen_density_category", "device_model", "language",
                  "maturity_rating", "asset_value", "thirdPartyUserId", "source", "name", "age", "sex", "location",
                  "maritalStatus", "birthday", "facebook_id", "twitter_handle", "education", "nationality", "page",
                  "getLatitude", "getLongitude", "getUserAddress", "iosID"));
}

TEST_F(ObjCCollaborators, UserFragmentReadsTheSevenCountersInOrder) {
  static_cast<void>([::TavloUtility getUserInfoRequestString]);

  EXPECT_THAT(calls().take(),
              ElementsAre("getIsUserNew", "getUniqueUserDayValue", "getUniqueUserDay", "getUniqueUserWeekValue",
                          "getNumberOfWeek", "getUniqueUserMonthValue", "getNumberOfMonth"));
}

TEST_F(ObjCCollaborators, PayloadReadsRecordsLastAndKeepsTheirKinds) {
  id const number = [NSNumber numberWithInt:3];
  sdk().records = [NSArray arrayWithObjects:trackerRecord(@"n", number, @"3x"), trackerRecord(nil, nil, @"0"), nil];

  NSDictionary* const payload = [::TavloUtility trackerNetworkSessionData];

  auto asked = calls().take();
  EXPECT_EQ(asked.front(), "TavloPackage sharedInstance");
  ASSERT_GE(asked.size(), 13U);
  asked.erase(asked.begin(), asked.end() - 13);
  EXPECT_THAT(asked,
              ElementsAre("DataBaseHandler sharedInastance", "getNetworkTrackerDetails", "networkID", "event", "count",
                          "count", "networkID", "event", "count", "networkID", "event", "count", "count"));
  id const kept =
      [NSDictionary dictionaryWithObjectsAndKeys:@"n", @"network_id", number, @"event", @"3x", @"count", nil];
  EXPECT_TRUE([[payload objectForKey:@"network_event_count"] isEqual:[NSArray arrayWithObject:kept]]);
  EXPECT_EQ([payload count], 35U);
}

TEST_F(ObjCCollaborators, APackageThatIsNotThereIsLikeOneThatHoldsNothing) {
  NSString* const empty = [::TavloUtility getAdditionalRequestingString:nil];
  sdk().texts = nil;

  NSString* const none = [::TavloUtility getAdditionalRequestingString:nil];

  EXPECT_TRUE([none isEqual:empty]);
  EXPECT_EQ([none length], 737U);
}

TEST_F(ObjCCollaborators, EveryTextReadReachesItsOperation) {
  const auto package = tavlo::TavloPackage::sharedInstance();

  for (const auto& [name, read] : kPackageTextReads) {
    [sdk().texts setObject:string("value of " + std::string(name)) forKey:string(name)];
    EXPECT_EQ((*package.*read)(), "value of " + std::string(name));
  }
}

TEST_F(ObjCCollaborators, WhatAppsInCppInstalledStays) {
  const Installed<tavlo::Logger, RecordingLogger> logger;

  objc::adoptCollaborators();
  static_cast<void>([::TavloUtility getCacheVideoDataPath:nil]);

  EXPECT_THAT(logger->lines, ElementsAre("getCacheVideoDataPath() - ERROR: Passed file url parameter is nil"));
  EXPECT_TRUE(calls().take().empty());
}

TEST_F(ObjCCollaborators, WhatIsNoStringForADigestIsReportedAndAbsent) {
  for (const id value : std::initializer_list<id>{static_cast<id>([NSNumber numberWithInt:7]),
                                                  static_cast<id>([NSNull null]), static_cast<id>([NSArray array]),
                                                  static_cast<id>([[[NSLock alloc] init] autorelease])}) {
    EXPECT_EQ([::TavloUtility md5:value], nil);
    EXPECT_THAT(calls().take(), ElementsAre(kReport));
  }
}

TEST_F(ObjCCollaborators, AnExceptionInsideADigestIsReportedAndAbsent) {
  NSString* const broken = [[[BrokenString alloc] init] autorelease];

  EXPECT_EQ([::TavloUtility md5:broken], nil);

  EXPECT_THAT(calls().take(), ElementsAre(kReport));
}

TEST_F(ObjCCollaborators, WhatTheReporterRaisesPassesToTheCaller) {
  sdk().reporterRaises = YES;

  NSException* const first =
      apple_platform::exceptionRaisedBy([] { static_cast<void>([::TavloUtility md5:[NSNull null]]); });
  NSException* const second = apple_platform::exceptionRaisedBy(
      [] { static_cast<void>([::TavloUtility md5:[[[BrokenString alloc] init] autorelease]]); });

  EXPECT_EQ(text([first name]), "ReporterException");
  EXPECT_EQ(text([second name]), "ReporterException");
  EXPECT_THAT(calls().take(), ElementsAre(kReport, kReport));
}

TEST_F(ObjCCollaborators, OtherOperationsLetExceptionsPass) {
  NSString* const broken = [[[BrokenString alloc] init] autorelease];

  NSException* const raised =
      apple_platform::exceptionRaisedBy([=] { static_cast<void>([::TavloUtility getCacheVideoDataPath:broken]); });

  EXPECT_EQ(text([raised name]), text(NSInternalInconsistencyException));
  EXPECT_TRUE(calls().take().empty());
}

}  // namespace
}  // namespace tavlo::test
