// What all selectors leave behind: nothing that grows with the calls. The address sanitizer counts the bytes in use;
// its leak checker cannot be asked here, as what the Objective-C runtime allocates while it is loaded is a leak to it.
#include <gtest/gtest.h>

#include <cstddef>

#include "cache/KeyedArchive.h"
#include "tests/objc/AppTest.h"
#import "tests/objc/StandIns.h"
#include "tests/objc/Tasks.h"
#include "tests/support/TemporaryFolder.h"

// The sanitizer's own.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

namespace tavlo::test {
namespace {

class ObjCLeaks : public AppTest {};

// What changes nothing on disk.
void callReaders(NSString* cached) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  static_cast<void>([::TavloUtility getAdditionalRequestingString:nil]);
  static_cast<void>([::TavloUtility trackerNetworkSessionData]);
  static_cast<void>([::TavloUtility getInAppNotificationAdditionalRequest]);
  static_cast<void>([::TavloUtility getUserInfoRequestString]);
  static_cast<void>([::TavloUtility getDocumentDirectoryPath:cached]);
  static_cast<void>([::TavloUtility getCacheVideoDataPath:@"http://h/a.mp4"]);
  static_cast<void>([::TavloUtility getCacheVideoPathOfSavedInDB:cached]);
  static_cast<void>([::TavloUtility getCachedVideoList:YES]);
  static_cast<void>([::TavloUtility getCachedVideoList:NO]);
  static_cast<void>([::TavloUtility deleteCachedVideo:@"/none"]);
  static_cast<void>([::TavloUtility getCacheBannerImagePath:@"http://h/a.mp4"]);
  [::TavloUtility setAppIdToUserDefault:@""];
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

// The settings, the download with its task on the queue, and clearing, which removes what was stored.
void callWriters(NSString* image) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  [::TavloUtility setAppIdToUserDefault:@"app"];
  [::TavloUtility setOptionalIdToUserDefault:@"user"];
  [::TavloUtility setSecurityKeyToUserDefault:@"key"];
  [::TavloUtility cachedBannerImage:image];
  waitForTasks();
  [::TavloUtility clearCache];
  [pool drain];
  static_cast<void>(calls().take());
}

// How many bytes a call leaves, on average, once whatever is made once has been made.
template <class Call>
double bytesLeftBy(Call call, int rounds) {
  testing::internal::CaptureStderr();
  for (int round = 0; round < 20; ++round) call();
  const auto before = static_cast<double>(__sanitizer_get_current_allocated_bytes());
  for (int round = 0; round < rounds; ++round) call();
  const auto after = static_cast<double>(__sanitizer_get_current_allocated_bytes());
  static_cast<void>(testing::internal::GetCapturedStderr());
  return (after - before) / rounds;
}

TEST_F(ObjCLeaks, NothingStaysBehindAfterAThousandCallsOfWhatReads) {
  forgetDevice();
  static_cast<void>([::TavloUtility getDocumentDirectoryPath:@""]);
  const auto list = Value::list({Value("a"), Value::map({{Value("b"), Value(1)}})});
  const Value object = Value::object({.className = "NoSuchClass", .fields = {{Value("id"), Value("ad-1")}}});
  writeFile(cache() / "VideoListAPI", keyed_archive::encode(list));
  writeFile(cache() / "InterstitialListAPI", keyed_archive::encode(Value::list({object})));

  EXPECT_LT(bytesLeftBy([] { callReaders(@"name"); }, 1000), 16);

  forgetDevice();
}

// The smallest object of Objective-C takes more.
TEST_F(ObjCLeaks, NothingStaysBehindAfterThreeHundredCallsOfWhatWrites) {
  const TemporaryFolder folder;
  writeFile(folder / "banner.png", "pixels");
  NSString* const image = string("file://" + (folder / "banner.png").string());

  EXPECT_LT(bytesLeftBy([=] { callWriters(image); }, 300), 16);
}

}  // namespace
}  // namespace tavlo::test
