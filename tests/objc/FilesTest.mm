// Files, settings, console, queue, fetches and bundles over Foundation, on the real disk.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include "common/PropertyList.h"
#include "platform/Platform.h"
#include "tests/objc/AppTest.h"
#include "tests/support/Gate.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using platform::Durable;
using platform::Existence;
using platform::Removal;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class ObjCPlatform : public AppTest {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }

  TemporaryFolder folder_;
  std::shared_ptr<platform::Platform> platform_ = apple_platform::make();
  platform::FileManager& files_ = platform_->fileManager();
};

TEST_F(ObjCPlatform, DocumentsLieInTheHomeAndAreMade) {
  EXPECT_EQ(files_.documentDirectory(), documents().string());
  EXPECT_TRUE(std::filesystem::is_directory(documents()));
  EXPECT_EQ(files_.documentDirectoryUrl(), "file://" + documents().string() + "/");
}

TEST_F(ObjCPlatform, ExistenceFollowsLinks) {
  writeFile(path("file"), "");
  std::filesystem::create_symlink(path("file"), path("link"));
  std::filesystem::create_symlink(path("none"), path("dangling"));

  EXPECT_EQ(files_.fileExistsAtPathIsDirectory(path("file")), Existence::file);
  EXPECT_EQ(files_.fileExistsAtPathIsDirectory(path("")), Existence::directory);
  EXPECT_EQ(files_.fileExistsAtPathIsDirectory(path("link")), Existence::file);
  EXPECT_EQ(files_.fileExistsAtPathIsDirectory(path("dangling")), Existence::missing);
  EXPECT_EQ(files_.fileExistsAtPathIsDirectory(path("none")), Existence::missing);
}

TEST_F(ObjCPlatform, PathsThatNameNothingNeverReachTheSystem) {
  for (const Text& none :
       {Text(), Text(""), Text(std::string("/tmp\0x", 6)), Text("/tmp/\xED\xA0\xBD"), Text("/tmp/\xFF")}) {
    EXPECT_EQ(files_.fileExistsAtPathIsDirectory(none), Existence::missing);
    EXPECT_FALSE(files_.removeItemAtPath(none, Removal::anything));
    EXPECT_FALSE(files_.createDirectoryAtPath(none));
    EXPECT_EQ(files_.contentsOfDirectoryAtPath(none), std::nullopt);
    EXPECT_EQ(files_.dataWithContentsOfFile(none), std::nullopt);
    EXPECT_FALSE(files_.writeToFileAtomically("x", none, Durable::name));
  }
}

TEST_F(ObjCPlatform, ADirectoryIsMadeOnceAndOnlyItsLastComponent) {
  EXPECT_TRUE(files_.createDirectoryAtPath(path("new")));
  EXPECT_FALSE(files_.createDirectoryAtPath(path("a/b")));
  EXPECT_NE(files_.createDirectoryAtPath(path("a/b")).description(), "");
}

TEST_F(ObjCPlatform, ADirectoryThatIsThereIsNotMadeAgain) {
  std::filesystem::create_directory(path("there"));

  const auto again = files_.createDirectoryAtPath(path("there"));

  EXPECT_FALSE(again);
  EXPECT_THAT(again.description(), HasSubstr(path("there")));
}

TEST_F(ObjCPlatform, RemovalTakesTreesAndLinksButNotWhatTheyLeadTo) {
  std::filesystem::create_directories(path("tree/inner"));
  writeFile(path("tree/inner/file"), "1");
  writeFile(path("kept"), "2");
  std::filesystem::create_symlink(path("kept"), path("link"));

  EXPECT_FALSE(files_.removeItemAtPath(path("tree"), Removal::fileOnly));
  EXPECT_TRUE(files_.removeItemAtPath(path("tree"), Removal::anything));
  EXPECT_TRUE(files_.removeItemAtPath(path("link"), Removal::fileOnly));
  EXPECT_FALSE(files_.removeItemAtPath(path("link"), Removal::anything));

  EXPECT_THAT(*files_.contentsOfDirectoryAtPath(folder_.path().string()), UnorderedElementsAre("kept"));
}

TEST_F(ObjCPlatform, AFailureSaysWhichPath) {
  EXPECT_EQ(files_.removeItemAtPath(path("none"), Removal::anything).description(),
            "No such file or directory: " + path("none"));
  EXPECT_THAT(files_.removeItemAtPath(folder_.path().string(), Removal::fileOnly).description(),
              testing::StartsWith("Is a directory: /"));
  EXPECT_THAT(files_.writeToFileAtomically("x", path("none/file"), Durable::contents).description(),
              HasSubstr(path("none/file")));
}

TEST_F(ObjCPlatform, BytesComeBackAsTheyWereWritten) {
  const std::string bytes("\0\xFF image \n", 10);

  EXPECT_TRUE(files_.writeToFileAtomically("older", path("file"), Durable::contents));
  EXPECT_TRUE(files_.writeToFileAtomically(bytes, path("file"), Durable::name));
  EXPECT_TRUE(files_.writeToFileAtomically("", path("empty"), Durable::name));

  EXPECT_EQ(readFile(path("file")), bytes);
  EXPECT_EQ(files_.dataWithContentsOfFile(path("file")), bytes);
  EXPECT_EQ(files_.dataWithContentsOfFile(path("empty")), "");
  EXPECT_THAT(*files_.contentsOfDirectoryAtPath(folder_.path().string()), UnorderedElementsAre("file", "empty"));
}

TEST_F(ObjCPlatform, WhatIsNoRegularFileHasNoData) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);

  EXPECT_EQ(files_.dataWithContentsOfFile(path("pipe")), std::nullopt);
  EXPECT_EQ(files_.dataWithContentsOfFile(folder_.path().string()), std::nullopt);
  EXPECT_EQ(files_.contentsOfDirectoryAtPath(path("pipe")), std::nullopt);
}

TEST_F(ObjCPlatform, SettingsAreSharedWithTheAppInTheirKinds) {
  NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
  [defaults setObject:[NSNumber numberWithInt:42] forKey:@"OptionalId"];
  platform::UserDefaults& settings = platform_->standardUserDefaults();

  settings.setObjectForKey(Value("id-1"), "ApplicationId");
  settings.setObjectForKey(Value::map({{Value("a"), Value::list({Value(1), Value("b")})}}), "Other");

  EXPECT_TRUE(settings.synchronize());
  EXPECT_EQ(text([defaults stringForKey:@"ApplicationId"]), "id-1");
  EXPECT_EQ([[[defaults dictionaryForKey:@"Other"] objectForKey:@"a"] count], 2U);
  EXPECT_EQ(text([::TavloUtility getOptionalIdFromUserDefault]), "42");
  EXPECT_EQ(settings.objectForKey("never set"), std::nullopt);
}

TEST_F(ObjCPlatform, AValueThatSettingsCannotHoldIsLeftOutAndNamedOnTheConsole) {
  platform::UserDefaults& settings = platform_->standardUserDefaults();
  testing::internal::CaptureStderr();

  settings.setObjectForKey(Value(), "Refused");

  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Refused"));
  EXPECT_EQ(settings.objectForKey("Refused"), std::nullopt);
}

TEST_F(ObjCPlatform, SettingsAreOnDiskWhenASetterReturns) {
  [::TavloUtility setAppIdToUserDefault:@"on disk"];

  const auto file = home() / "GNUstep" / "Defaults" /
                    ([[[NSProcessInfo processInfo] processName] UTF8String] + std::string(".plist"));
  NSDictionary* const stored = [NSDictionary dictionaryWithContentsOfFile:string(file.string())];
  EXPECT_EQ(text([stored objectForKey:@"ApplicationId"]), "on disk");
}

TEST_F(ObjCPlatform, PropertyListsOfEitherSideAreReadByTheOther) {
  const Value settings = Value::map({{Value("ApplicationId"), Value("Zo\xC3\xAB \xF0\x9F\x98\x80")},
                                     {Value("count"), Value(-7)},
                                     {Value("on"), Value(true)},
                                     {Value("date"), Value(Date{757382400.25})},
                                     {Value("data"), Value::data("\xFF")},
                                     {Value("list"), Value::list({Value(1.5), Value("")})}});
  const std::string ours = *property_list::encode(settings);

  NSData* const theirs = [NSPropertyListSerialization dataFromPropertyList:apple_platform::objectOf(settings)
                                                                    format:NSPropertyListBinaryFormat_v1_0
                                                          errorDescription:nullptr];
  const id read = [NSPropertyListSerialization propertyListFromData:[NSData dataWithBytes:ours.data()
                                                                                   length:ours.size()]
                                                   mutabilityOption:NSPropertyListImmutable
                                                             format:nullptr
                                                   errorDescription:nullptr];

  EXPECT_EQ(apple_platform::valueOf(read), std::optional<Value>(settings));
  const auto decoded = property_list::decode({static_cast<const char*>([theirs bytes]), [theirs length]});
  EXPECT_EQ(decoded.value, std::optional<Value>(settings)) << decoded.error;
}

TEST_F(ObjCPlatform, AConsoleLineIsTheMessageWhole) {
  testing::internal::CaptureStderr();

  platform_->console().log("100 %@ of \xE2\x82\xAC");

  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::EndsWith("] 100 %@ of \xE2\x82\xAC\n"));
}

TEST_F(ObjCPlatform, FileUrlsHaveDataAndTextsThatAreNoUrlHaveNone) {
  writeFile(path("a b.png"), "pixels");
  writeFile(path("empty"), "");

  EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl("file://" + path("a%20b.png")), "pixels");
  EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl("file://" + path("a%20b.png") + "\n"), "pixels");
  EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl("file://" + path("empty")), "");
  EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl("file://" + path("a b.png")), std::nullopt);
  EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl("file://" + path("none")), std::nullopt);
  EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl(""), std::nullopt);
  for (const char* const raising : {"file:", "file://", "file:///%FF", "file:///%ED%A0%BD"}) {
    EXPECT_EQ(platform_->urlData().dataWithContentsOfUrl(raising), std::nullopt) << raising;
  }
}

TEST_F(ObjCPlatform, BundlesAreDirectoriesWithResources) {
  std::filesystem::create_directory(path("TavloSDKResource.bundle"));
  writeFile(path("TavloSDKResource.bundle/volume.png"), "png");

  const auto bundle = platform_->bundles().bundleWithPath(path("TavloSDKResource.bundle"));

  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->pathForResourceOfType("volume", "png"), path("TavloSDKResource.bundle/volume.png"));
  EXPECT_EQ(bundle->pathForResourceOfType("mute", "png"), std::nullopt);
  EXPECT_EQ(platform_->bundles().bundleWithPath(path("none")), nullptr);
  EXPECT_EQ(platform_->bundles().bundleWithPath(std::nullopt), nullptr);
  EXPECT_EQ(platform_->bundles().bundleWithPath("/tmp/\xED\xA0\xBD"), nullptr);
  EXPECT_EQ(platform_->bundles().mainBundleResourcePath(), text([[NSBundle mainBundle] resourcePath]));
}

TEST_F(ObjCPlatform, ThreadOfTheQueueRunsEachTaskWhateverTheOthersRaise) {
  Gate done;
  std::atomic<int> ran = 0;

  platform_->backgroundQueue().dispatchAsync([] { throw std::runtime_error("C++"); });
  platform_->backgroundQueue().dispatchAsync([] { [NSException raise:@"Raised" format:@"by a task"]; });
  platform_->backgroundQueue().dispatchAsync(nullptr);
  const auto count = [&] {
    if (++ran == 20) done.open();
  };
  for (int task = 0; task < 20; ++task) platform_->backgroundQueue().dispatchAsync(count);
  done.wait();

  EXPECT_EQ(ran, 20);
}

TEST_F(ObjCPlatform, ThreadOfABannerDownloadStoresItForTheLookUp) {
  writeFile(path("banner.png"), "pixels");
  NSString* const url = string("file://" + path("banner.png"));
  EXPECT_EQ([::TavloUtility getCacheBannerImagePath:url], nil);
  static_cast<void>(calls().take());

  platform::install(platform_);
  [::TavloUtility cachedBannerImage:url];
  std::vector<std::string> lines;
  while (lines.empty() || lines.back() != "printLog:getAndSaveBannerImage() - write successfully") {
    for (auto& line : calls().take()) lines.push_back(line);
    std::this_thread::yield();
  }

  ASSERT_EQ(lines.size(), 2U);
  const Text stored = text([::TavloUtility getCacheBannerImagePath:url]);
  EXPECT_EQ(lines.front(), "printLog:Cached directory path : " + stored.value_or("(null)"));
  EXPECT_EQ(readFile(stored.value_or("")), "pixels");
}

}  // namespace
}  // namespace tavlo::test
