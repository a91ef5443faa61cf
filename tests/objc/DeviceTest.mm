// Position, images and the open-in menu against stand-ins for UIKit and CoreLocation: selectors, arguments and order.
#include <gmock/gmock.h>

#include <string>

#include "common/Slot.h"
#include "location/LocationSlots.h"
#import "platform/apple/AppleBundles.h"
#import "platform/apple/ExceptionGuard.h"
#include "tests/objc/AppTest.h"
#import "tests/objc/StandIns.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ObjCDevice : public AppTest {
 protected:
  ObjCDevice() { forgetDevice(); }
  ~ObjCDevice() override {
    locationManager().store(nullptr);
    processSlot<platform::Bundle>().store(nullptr);
    processSlot<const platform::Image>().store(nullptr);
    processSlot<platform::DocumentInteractionController>().store(nullptr);
    forgetDevice();
  }

  // What a call makes and no longer holds is released with its own pool.
  template <class Call>
  static std::vector<std::string> callsOf(Call call) {
    static_cast<void>(test::calls().take());
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    call();
    [pool drain];
    return test::calls().take();
  }

  static std::vector<std::string> fetched() {
    return callsOf([] { [::TavloUtility fetchCurrentLocation]; });
  }
};

TEST_F(ObjCDevice, ServicesThatAreOffAreAskedForNothingMore) {
  device().isEnabled = NO;

  EXPECT_THAT(fetched(), ElementsAre("locationServicesEnabled"));
}

TEST_F(ObjCDevice, WithoutPermissionNoManagerIsMade) {
  for (const int status : {0, 1, 2, 5}) {
    device().status = status;

    EXPECT_THAT(fetched(), ElementsAre("locationServicesEnabled", "authorizationStatus"));
  }
}

TEST_F(ObjCDevice, APositionIsReadStoredAndHandedToTheGeocoder) {
  device().status = 4;
  device().hasFix = YES;
  device().fix = {28.5, -0.12};

  EXPECT_THAT(fetched(),
              ElementsAre("locationServicesEnabled", "authorizationStatus", "CLLocationManager init",
                          "setDistanceFilter:-1", "setDesiredAccuracy:-1", "startUpdatingLocation", "location",
                          "TavloPackage sharedInstance", "setLatitude:28.500000 AndLogitude:-0.120000",
                          "TavloPackage sharedInstance", "setUserAddress:", "location", "CLGeocoder init",
                          "reverseGeocodeLocation:28.5,-0.12 completionHandler"));
  EXPECT_TRUE(device().isGiven);
}

TEST_F(ObjCDevice, APlaceThatNoManagerGaveIsHandedOnAsWell) {
  const auto asked = callsOf([] {
    apple_platform::make()->makeGeocoder()->reverseGeocodeLocation(platform::Location{{1.5, 2.5}}, [](auto&, auto&) {});
  });

  EXPECT_EQ(asked.back(), "reverseGeocodeLocation:1.5,2.5 completionHandler");
  EXPECT_FALSE(device().isGiven);
}

TEST_F(ObjCDevice, AnAnswerThatComesAtOnceIsNotAnsweredAgainForWhatItRaises) {
  device().answersAtOnce = YES;
  testing::internal::CaptureStderr();
  NSException* raised = nil;

  const auto fetch = [&] { raised = apple_platform::exceptionRaisedBy([] { [::TavloUtility fetchCurrentLocation]; }); };
  static_cast<void>(callsOf([&] {
    fetch();
    [raised retain];
  }));

  EXPECT_EQ(text([[raised autorelease] name]), text(NSRangeException));
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::Not(HasSubstr("Geocode failed")));
}

TEST_F(ObjCDevice, TheNextFetchReleasesTheManagerOfTheLast) {
  static_cast<void>(fetched());

  const auto again = fetched();

  EXPECT_EQ(again[2], "CLLocationManager init");
  EXPECT_EQ(again[3], "CLLocationManager dealloc");
}

TEST_F(ObjCDevice, AnAbsentPositionIsZeroAndHandedOn) {
  const auto asked = fetched();

  EXPECT_THAT(asked, testing::Contains("setLatitude:0.000000 AndLogitude:0.000000"));
  EXPECT_EQ(asked.back(), "reverseGeocodeLocation:(null) completionHandler");
}

TEST_F(ObjCDevice, WhatTheGeocoderRaisesIsAnErrorOfItsAnswer) {
  device().geocoderRaises = YES;
  testing::internal::CaptureStderr();

  EXPECT_EQ(callsOf([] { [::TavloUtility fetchCurrentLocation]; }).back(), "CLGeocoder dealloc");

  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("] Geocode failed with error: no location\n"));
}

TEST_F(ObjCDevice, TheFirstPlacemarkBecomesTheAddress) {
  static_cast<void>(fetched());
  NSDictionary* const fields = [NSDictionary
      dictionaryWithObjectsAndKeys:@"Delhi", @"administrativeArea", @"Saket", @"subLocality", @"New Delhi", @"locality",
                                   @"110017", @"postalCode", @"India", @"country", @"IN", @"ISOcountryCode", nil];
  testing::internal::CaptureStderr();

  const auto asked = callsOf([=] {
    answerGeocoder([NSArray arrayWithObjects:placemark(fields), placemark([NSDictionary dictionary]), nil], nil);
  });

  EXPECT_THAT(asked, ElementsAre("placemark.ISOcountryCode", "placemark.country", "placemark.postalCode",
                                 "placemark.administrativeArea", "placemark.locality", "placemark.subLocality",
                                 "placemark.thoroughfare", "TavloPackage sharedInstance",
                                 R"(setUserAddress:{"state":"Delhi","locality":"Saket","pin":"110017",)"
                                 R"("city":"New Delhi","country":"India"})",
                                 "CLGeocoder dealloc"));
  const std::string console = testing::internal::GetCapturedStderr();
  EXPECT_THAT(console, HasSubstr("] placemark.ISOcountryCode =IN\n"));
  EXPECT_THAT(console, HasSubstr("] placemark.subThoroughfare =(null)\n"));
}

TEST_F(ObjCDevice, AnErrorLeavesTheAddressEmpty) {
  static_cast<void>(fetched());
  testing::internal::CaptureStderr();

  const auto asked = callsOf([] {
    NSDictionary* const why = [NSDictionary dictionaryWithObject:@"no network" forKey:NSLocalizedDescriptionKey];
    answerGeocoder(nil, [NSError errorWithDomain:@"kCLErrorDomain" code:2 userInfo:why]);
  });

  EXPECT_THAT(asked, ElementsAre("CLGeocoder dealloc"));
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("] Geocode failed with error: "));
  EXPECT_EQ(text([sdk().texts objectForKey:@"getUserAddress"]), "");
}

TEST_F(ObjCDevice, AnAbsentListIsAnEmptyAddress) {
  static_cast<void>(fetched());

  EXPECT_EQ(callsOf([] { answerGeocoder(nil, nil); })[1], "setUserAddress:{}");
}

TEST_F(ObjCDevice, AListWithoutPlacemarksRaises) {
  static_cast<void>(fetched());

  NSException* const raised = apple_platform::exceptionRaisedBy([] { answerGeocoder([NSArray array], nil); });

  EXPECT_EQ(text([raised name]), text(NSRangeException));
}

TEST_F(ObjCDevice, ImagesAreLoadedAnewFromTheResourceBundle) {
  const TemporaryFolder folder;
  const std::string path = (folder / "volume.png").string();
  writeFile(path, "png");
  processSlot<platform::Bundle>().store(
      std::make_shared<apple_platform::AppleBundle>([NSBundle bundleWithPath:string(folder.path().string())]));
  bool isImage = false;

  const auto first = callsOf([&] { isImage = [[::TavloUtility getVolumeImage] isKindOfClass:[UIImage class]]; });
  const auto second = callsOf([] { static_cast<void>([::TavloUtility getVolumeImage]); });
  const auto none = callsOf([&] { isImage = isImage && [::TavloUtility getMuteImage] == nil; });

  EXPECT_TRUE(isImage);
  EXPECT_THAT(first,
              ElementsAre("printLog:Calling Get volume Image first time", "printLog:Already Loaded framework bundle",
                          "UIImage imageWithContentsOfFile:" + path));
  EXPECT_THAT(second,
              ElementsAre("printLog:Calling Get volume Image first time", "printLog:Already Loaded framework bundle",
                          "UIImage imageWithContentsOfFile:" + path, "UIImage dealloc"));
  EXPECT_THAT(none, ElementsAre("printLog:Calling Get volume Image first time",
                                "printLog:Already Loaded framework bundle", "UIImage dealloc"));
  EXPECT_EQ(text([[::TavloUtility frameworkBundle] bundlePath]), folder.path().string());
}

TEST_F(ObjCDevice, ImagesKnowTheirSizeInPixels) {
  const auto image = apple_platform::make()->images().imageWithContentsOfFile("/");

  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width(), 24U);
  EXPECT_EQ(image->height(), 20U);
  EXPECT_TRUE(image->pixels().empty());
}

TEST_F(ObjCDevice, TheLogIsOfferedOverTheScreensView) {
  testing::internal::CaptureStderr();
  UIView* const view = [[[UIView alloc] init] autorelease];

  const auto asked = callsOf([=] { [::TavloUtility getExportTavloSDKLog:screen(view)]; });
  const auto again = callsOf([] { [::TavloUtility getExportTavloSDKLog:nil]; });

  const std::string url = "file://" + documents().string() + "/TavloCache/TavloLogFile.txt";
  EXPECT_THAT(asked, ElementsAre("interactionControllerWithURL:" + url, "view",
                                 "presentOpenInMenuFromRect:0,0,0,0 inView:the view animated:1",
                                 "printLog:Log file is created"));
  EXPECT_THAT(
      again, ElementsAre("interactionControllerWithURL:" + url, "UIDocumentInteractionController dealloc",
                         "presentOpenInMenuFromRect:0,0,0,0 inView:(null) animated:1", "printLog:Log file is created"));
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("] Documents Directory: file://" + documents().string() + "/\n"));
}

TEST_F(ObjCDevice, TheProbesUrlIsNoneAndThePlatformIsNotAsked) {
  device().opens = YES;
  bool answer = true;

  EXPECT_TRUE(callsOf([&] { answer = [::TavloUtility quillmixInstalledOnThisDevice] != NO; }).empty());

  EXPECT_FALSE(answer);
}

TEST_F(ObjCDevice, UrlsAreAskedForAtTheApplication) {
  device().opens = YES;
  bool answer = false;

  EXPECT_THAT(callsOf([&] { answer = apple_platform::make()->sharedApplication().canOpenURL("files://x"); }),
              ElementsAre("UIApplication sharedApplication", "canOpenURL:files://x"));

  EXPECT_TRUE(answer);
}

}  // namespace
}  // namespace tavlo::test
