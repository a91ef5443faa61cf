// Each of the 27 selectors on real files and settings, beside the C++ operation of the same name.
#include <gmock/gmock.h>
#include <objc/runtime.h>

#include <map>
#include <string>

#include "common/Slot.h"
#include "platform/Application.h"
#include "tests/objc/AppTest.h"
#import "tests/objc/PlainCaller.h"
#include "tests/objc/Tasks.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using Component = tavlo::TavloUtility;
using testing::ElementsAre;

class ObjCSelectors : public AppTest {
 protected:
  // The same call of both faces, which must leave the same record of calls.
  template <class Ours, class Theirs>
  static void expectSame(Ours ours, Theirs theirs) {
    static_cast<void>(calls().take());
    const auto expected = theirs();
    const auto asked = calls().take();

    EXPECT_EQ(ours(), expected);
    EXPECT_EQ(calls().take(), asked);
  }

  static Text path(const std::string& name) { return (cache() / name).string(); }
};

// The types: "c" stands for a truth value, "@" for an object, "v" for nothing.
TEST_F(ObjCSelectors, AreThe27WithTheirTypes) {
  const std::map<std::string, std::string> expected = {
      {"cachedBannerImage:", "v@"},
      {"clearCache", "v"},
      {"deleteCachedVideo:", "c@"},
      {"fetchCurrentLocation", "v"},
      {"frameworkBundle", "@"},
      {"getAdditionalRequestingString:", "@@"},
      {"getAppIdFromUserDefault", "@"},
      {"getCacheBannerImagePath:", "@@"},
      {"getCacheVideoDataPath:", "@@"},
      {"getCacheVideoPathOfSavedInDB:", "@@"},
      {"getCachedVideoList:", "@c"},
      {"getDocumentDirectoryPath:", "@@"},
      {"getExportTavloSDKLog:", "v@"},
      {"getFileExtensionFromUrl:", "@@"},
      {"getInAppNotificationAdditionalRequest", "@"},
      {"getMuteImage", "@"},
      {"getOptionalIdFromUserDefault", "@"},
      {"getSecurityKeyTFromUserDefault", "@"},
      {"getUserInfoRequestString", "@"},
      {"getVolumeImage", "@"},
      {"md5:", "@@"},
      {"quillmixInstalledOnThisDevice", "c"},
      {"setAppIdToUserDefault:", "v@"},
      {"setOptionalIdToUserDefault:", "v@"},
      {"setSecurityKeyToUserDefault:", "v@"},
      {"sortCacahedVideoDates:", "@@"},
      {"trackerNetworkSessionData", "@"},
  };

  std::map<std::string, std::string> found;
  unsigned int count = 0;
  Method* const methods = class_copyMethodList(object_getClass([::TavloUtility class]), &count);
  for (unsigned int i = 0; i < count; ++i) {
    const std::string name([NSStringFromSelector(method_getName(methods[i])) UTF8String]);
    if (name == "initialize") continue;
    NSMethodSignature* const signature = [[::TavloUtility class] methodSignatureForSelector:method_getName(methods[i])];
    std::string types(1, *[signature methodReturnType]);
    for (NSUInteger at = 2; at < [signature numberOfArguments]; ++at) types += *[signature getArgumentTypeAtIndex:at];
    for (char& type : types) type = type == 'C' ? 'c' : type;
    found.emplace(name, types);
  }
  free(methods);

  EXPECT_EQ(found, expected);
}

TEST_F(ObjCSelectors, AreCalledFromPlainObjectiveC) {
  testing::internal::CaptureStderr();

  NSDictionary* const answers = tavloAnswersInPlainObjectiveC();
  waitForTasks();
  processSlot<platform::DocumentInteractionController>().store(nullptr);

  static_cast<void>(testing::internal::GetCapturedStderr());
  EXPECT_EQ([answers count], 20U);
  EXPECT_EQ(text([answers objectForKey:@"getUserInfoRequestString"]),
            "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
  EXPECT_EQ(text([answers objectForKey:@"getDocumentDirectoryPath:"]), path("a"));
  EXPECT_EQ(text([answers objectForKey:@"getAppIdFromUserDefault"]), "app");
  EXPECT_EQ(text([answers objectForKey:@"md5:"]), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ([answers objectForKey:@"getVolumeImage"], [NSNull null]);
}

TEST_F(ObjCSelectors, RequestsAreThoseOfTheComponent) {
  [sdk().texts setObject:string("a b&c=\xF0\x9F\x98\x80") forKey:@"applicationId"];
  [sdk().texts setObject:@"" forKey:@"token"];
  [sdk().texts setObject:string("carrier & co") forKey:@"carrier_name"];
  [sdk().numbers setObject:[NSNumber numberWithInt:-3] forKey:@"resolution"];
  [sdk().numbers setObject:[NSNumber numberWithInt:1] forKey:@"getIsUserNew"];
  sdk().isLimited = YES;
  sdk().day = @"320";
  sdk().records =
      [NSArray arrayWithObjects:trackerRecord(@"n", @"e", @"3"),
                                trackerRecord([NSNumber numberWithInt:7], nil, [NSNumber numberWithInt:2]), nil];

  expectSame([] { return *text([::TavloUtility getAdditionalRequestingString:@"ignored"]); },
             [] { return Component::getAdditionalRequestingString(); });
  expectSame([] { return *text([::TavloUtility getInAppNotificationAdditionalRequest]); },
             [] { return Component::getInAppNotificationAdditionalRequest(); });
  expectSame([] { return *text([::TavloUtility getUserInfoRequestString]); },
             [] { return Component::getUserInfoRequestString(); });
  expectSame([] { return *apple_platform::valueOf([::TavloUtility trackerNetworkSessionData]); },
             [] { return Component::trackerNetworkSessionData(); });
}

TEST_F(ObjCSelectors, UserFragmentIsTheContracts) {
  sdk().day = @"a&b";
  [sdk().numbers setObject:[NSNumber numberWithInt:46] forKey:@"getNumberOfWeek"];

  NSString* const fragment = [::TavloUtility getUserInfoRequestString];

  EXPECT_EQ(text(fragment), "&ru=0&ru_n=&uud=0&uud_n=a&b&uuw=0&uuw_n=46&uum=0&uum_n=0");
}

TEST_F(ObjCSelectors, CachePathsAndLookUpsAreThoseOfTheComponent) {
  EXPECT_EQ(text([::TavloUtility getDocumentDirectoryPath:@"a.mp4"]), path("a.mp4"));
  EXPECT_THAT(calls().take(), ElementsAre("printLog:TavloCache directory created!",
                                          "printLog:Cached directory path : " + *path("a.mp4")));
  writeFile(cache() / "46a031da1eba2acf8ec285d177c677da.mp4", "video");
  writeFile(cache() / "46a031da1eba2acf8ec285d177c677da", "image");

  EXPECT_EQ(text([::TavloUtility getCacheVideoDataPath:@" http://h/a.mp4\n"]), std::nullopt);
  EXPECT_EQ(text([::TavloUtility getCacheVideoDataPath:@"http://h/a.mp4"]),
            path("46a031da1eba2acf8ec285d177c677da.mp4"));
  EXPECT_EQ(text([::TavloUtility getCacheVideoPathOfSavedInDB:@"46a031da1eba2acf8ec285d177c677da.mp4"]),
            path("46a031da1eba2acf8ec285d177c677da.mp4"));
  EXPECT_EQ(text([::TavloUtility getCacheBannerImagePath:@" http://h/a.mp4\n"]),
            path("46a031da1eba2acf8ec285d177c677da"));
  for (NSString* const each :
       std::initializer_list<NSString*>{@"http://h/a.mp4", @"", @"none", string("\xED\xA0\xBD"), nil}) {
    expectSame([=] { return text([::TavloUtility getCacheVideoDataPath:each]); },
               [=] { return Component::getCacheVideoDataPath(text(each)); });
    expectSame([=] { return text([::TavloUtility getCacheVideoPathOfSavedInDB:each]); },
               [=] { return Component::getCacheVideoPathOfSavedInDB(text(each)); });
    expectSame([=] { return text([::TavloUtility getCacheBannerImagePath:each]); },
               [=] { return Component::getCacheBannerImagePath(text(each)); });
    expectSame([=] { return text([::TavloUtility getDocumentDirectoryPath:each]); },
               [=] { return Component::getDocumentDirectoryPath(text(each).value_or("")); });
  }
}

TEST_F(ObjCSelectors, DeletingAndClearingLeaveTheLogFileOnly) {
  static_cast<void>([::TavloUtility getDocumentDirectoryPath:@""]);
  writeFile(cache() / "a", "1");
  writeFile(cache() / "TavloLogFile.txt", "log");
  writeFile(cache() / "tavlologfile.txt", "another");
  std::filesystem::create_directory(cache() / "folder");
  writeFile(cache() / "folder" / "inner", "2");

  EXPECT_EQ([::TavloUtility deleteCachedVideo:string(*path("a"))], YES);
  EXPECT_EQ([::TavloUtility deleteCachedVideo:string(*path("a"))], NO);
  EXPECT_EQ([::TavloUtility deleteCachedVideo:nil], NO);
  EXPECT_EQ([::TavloUtility deleteCachedVideo:string("\xED\xA0\xBD")], NO);
  [::TavloUtility clearCache];

  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(cache())) left.push_back(entry.path().filename());
  EXPECT_THAT(left, ElementsAre("TavloLogFile.txt"));
}

// GNUstep Base's settings lose the first half of what takes two units of UTF-16, so there is none here.
TEST_F(ObjCSelectors, IdentifiersAreStoredAndEmptyOnesIgnored) {
  NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
  for (NSString* const key : std::initializer_list<NSString*>{@"ApplicationId", @"OptionalId", @"SecurityKey"})
    [defaults removeObjectForKey:key];

  EXPECT_EQ([::TavloUtility getAppIdFromUserDefault], nil);
  [::TavloUtility setAppIdToUserDefault:@" app "];
  [::TavloUtility setOptionalIdToUserDefault:string("Zo\xC3\xAB \xE2\x82\xAC")];
  [::TavloUtility setSecurityKeyToUserDefault:@"key"];
  [::TavloUtility setAppIdToUserDefault:@""];
  [::TavloUtility setAppIdToUserDefault:nil];

  EXPECT_EQ(text([::TavloUtility getAppIdFromUserDefault]), " app ");
  EXPECT_EQ(text([::TavloUtility getOptionalIdFromUserDefault]), "Zo\xC3\xAB \xE2\x82\xAC");
  EXPECT_EQ(text([::TavloUtility getSecurityKeyTFromUserDefault]), "key");
  EXPECT_EQ(Component::getAppIdFromUserDefault(), " app ");
  EXPECT_EQ(Component::getOptionalIdFromUserDefault(), "Zo\xC3\xAB \xE2\x82\xAC");
  EXPECT_EQ(Component::getSecurityKeyTFromUserDefault(), "key");
}

TEST_F(ObjCSelectors, DigestsAndExtensionsAreThoseOfTheComponent) {
  EXPECT_EQ(text([::TavloUtility md5:@""]), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(text([::TavloUtility md5:string(std::string_view("abc\0def", 7))]), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ([::TavloUtility md5:nil], nil);
  EXPECT_EQ(text([::TavloUtility getFileExtensionFromUrl:@"http://h/clip%2Emp4?q=a.b"]), "mp4");
  EXPECT_EQ([::TavloUtility getFileExtensionFromUrl:nil], nil);
  EXPECT_TRUE(calls().take().empty());
}

// What GNUstep Base's own classes make of these is listed in docs/objective-c.md; the contract decides.
TEST_F(ObjCSelectors, TraitsOfThePlatformAreNotTheContracts) {
  EXPECT_EQ(text([::TavloUtility getFileExtensionFromUrl:@"http://h/.mp4"]), "mp4");
  EXPECT_EQ(text([@"/.mp4" pathExtension]), "");

  EXPECT_EQ(text([::TavloUtility getFileExtensionFromUrl:@"http://h/a.mp4;v=1"]), "mp4;v=1");
  EXPECT_EQ(text([[[NSURL URLWithString:@"http://h/a.mp4;v=1"] path] pathExtension]), "mp4");

  sdk().records =
      [NSArray arrayWithObjects:trackerRecord(@"n", @"e", @"4294967295"), trackerRecord(nil, nil, nil), nil];
  EXPECT_EQ([[[::TavloUtility trackerNetworkSessionData] objectForKey:@"network_event_count"] count], 1U);
  EXPECT_LT([@"4294967295" intValue], 0);

  EXPECT_TRUE([[NSCharacterSet whitespaceCharacterSet] characterIsMember:0x200B]);
  EXPECT_NE(text([::TavloUtility md5:string("\xE2\x80\x8Bx")]), text([::TavloUtility md5:@"x"]));
}

}  // namespace
}  // namespace tavlo::test
