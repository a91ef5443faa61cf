// What all selectors leave behind: nothing. The address sanitizer counts the bytes in use; its leak checker cannot be
// asked here, as what the Objective-C runtime allocates while it is loaded is a leak to it.
#include <gtest/gtest.h>

#include <cstddef>

#include "cache/KeyedArchive.h"
#include "tests/objc/AppTest.h"
#import "tests/objc/StandIns.h"
#include "tests/support/TemporaryFolder.h"

// The sanitizer's own.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

namespace tavlo::test {
namespace {

class ObjCLeaks : public AppTest {};

void callEverything(NSString* cached) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  static_cast<void>([::TavloUtility getAdditionalRequestingString:nil]);
  static_cast<void>([::TavloUtility trackerNetworkSessionData]);
  static_cast<void>([::TavloUtility getInAppNotificationAdditionalRequest]);
  static_cast<void>([::TavloUtility getUserInfoRequestString]);
  static_cast<void>([::TavloUtility getDocumentDirectoryPath:cached]);
  static_cast<void>([::TavloUtility getCacheVideoDataPath:@"http://h/a.mp4"]);
  static_cast<void>([::TavloUtility getCacheVideoPathOfSavedInDB:cached]);
  static_cast<void>([::TavloUtility getCachedVideoList:YES]);
  static_cast<void>([::TavloUtility deleteCachedVideo:@"/none"]);
  static_cast<void>([::TavloUtility getCacheBannerImagePath:@"http://h/a.mp4"]);
  static_cast<void>([::TavloUtility setAppIdToUserDefault:@""]);
  static_cast<void>([::TavloUtility getAppIdFromUserDefault]);
  static_cast<void>([::TavloUtility getOptionalIdFromUserDefault]);
  static_cast<void>([::TavloUtility getSecurityKeyTFromUserDefault]);
  [::TavloUtility fetchCurrentLocation];
  answerGeocoder(nil, nil);
  static_cast<void>([::TavloUtility frameworkBundle]);
  static_cast<void>([::TavloUtility getVolumeImage]);
  static_cast<void>([::TavloUtility getMuteImage]);
  [::TavloUtility getExportTavloSDKLog:screen(nil)];
  static_cast<void>([::TavloUtility quillmixInstalledOnThisDevice]);
  static_cast<void>([::TavloUtility md5:@"text"]);
  static_cast<void>([::TavloUtility md5:[NSNull null]]);
  static_cast<void>([::TavloUtility getFileExtensionFromUrl:@"http://h/a.mp4"]);
  static_cast<void>([::TavloUtility
      sortCacahedVideoDates:[NSArray arrayWithObject:[NSDictionary dictionaryWithObject:@"1" forKey:@"startdate"]]]);
  [pool drain];
  static_cast<void>(calls().take());
}

TEST_F(ObjCLeaks, NothingStaysBehindAfterAThousandCallsOfEachSelector) {
  forgetDevice();
  testing::internal::CaptureStderr();
  static_cast<void>([::TavloUtility getDocumentDirectoryPath:@""]);
  const auto list = Value::list({Value("a"), Value::map({{Value("b"), Value(1)}})});
  writeFile(cache() / "VideoListAPI", keyed_archive::encode(list));
  for (int round = 0; round < 20; ++round) callEverything(@"name");

  const std::size_t before = __sanitizer_get_current_allocated_bytes();
  for (int round = 0; round < 1000; ++round) callEverything(@"name");
  const std::size_t after = __sanitizer_get_current_allocated_bytes();

  static_cast<void>(testing::internal::GetCapturedStderr());
  EXPECT_LT(after, before + 16000) << "a leak of 16 bytes a round, or more";
  forgetDevice();
}

}  // namespace
}  // namespace tavlo::test
