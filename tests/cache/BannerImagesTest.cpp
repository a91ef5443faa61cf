// The banner images' writer and reader, call by call, with the background queue stepped by hand.
#include <gtest/gtest.h>

#include <new>

#include "TavloUtility.h"
#include "tests/support/CachePlatform.h"
#include "tests/support/CaseName.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo::test {
namespace {

using Calls = std::vector<std::string>;

constexpr const char* kUrl = "http://h/a.png";
const std::string kName = "9ef778804fd929ca71a038547aea542b";  // the digest of it
const std::string kPathLine = "Cached directory path : /app/Documents/TavloCache/9ef778804fd929ca71a038547aea542b";

class BannerImages : public testing::Test {
 protected:
  BannerImages() {
    platform_->putFolder("TavloCache");
    platform_->urlContents[kUrl] = "image";
  }

  void fail(const std::string& call) {
    platform_->onFileCall = [=](const std::string& made) { return made == call ? Text("broken") : std::nullopt; };
  }

  InstalledPlatform<CachePlatform> platform_;
};

TEST_F(BannerImages, TheCallOnlyHandsTheTaskOver) {
  TavloUtility::cachedBannerImage(kUrl);

  EXPECT_EQ(platform_->calls(), (Calls{"dispatchAsync"}));
  EXPECT_EQ(platform_->names("TavloCache"), Calls{});
}

TEST_F(BannerImages, TheTaskFetchesAndThenWrites) {
  TavloUtility::cachedBannerImage(kUrl);
  platform_->forget();

  platform_->runTask();

  EXPECT_EQ(platform_->calls(), (Calls{"dataWithContentsOfUrl http://h/a.png", "documentDirectory",
                                       "fileExistsAtPathIsDirectory TavloCache", "log " + kPathLine,
                                       "writeToFileAtomically TavloCache/" + kName + " 5 bytes",
                                       "log getAndSaveBannerImage() - write successfully"}));
  EXPECT_EQ(platform_->bytes("TavloCache/" + kName), "image");
}

TEST_F(BannerImages, TheImageIsFoundOnceItIsWritten) {
  TavloUtility::cachedBannerImage(kUrl);
  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(kUrl), std::nullopt);
  platform_->runTask();

  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(kUrl), "/app/Documents/TavloCache/" + kName);

  EXPECT_EQ(platform_->lines(),
            (Calls{kPathLine, "getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist", kPathLine,
                   "getAndSaveBannerImage() - write successfully", kPathLine}));
}

TEST_F(BannerImages, EveryCallDownloadsAgainAndReplaces) {
  TavloUtility::cachedBannerImage(kUrl);
  platform_->runTask();
  platform_->urlContents[kUrl] = "newer";

  TavloUtility::cachedBannerImage(kUrl);
  platform_->runTask();

  EXPECT_EQ(platform_->bytes("TavloCache/" + kName), "newer");
}

TEST_F(BannerImages, AnEmptyBodyIsAnEmptyImage) {
  platform_->urlContents[kUrl] = "";
  TavloUtility::cachedBannerImage(kUrl);

  platform_->runTask();

  EXPECT_EQ(platform_->lines(), (Calls{kPathLine, "getAndSaveBannerImage() - write successfully"}));
  EXPECT_EQ(platform_->bytes("TavloCache/" + kName), "");
}

TEST_F(BannerImages, NoDataLeavesTheOlderImage) {
  platform_->putFile("TavloCache/" + kName, "older");
  platform_->urlContents.clear();
  TavloUtility::cachedBannerImage(kUrl);

  platform_->runTask();

  EXPECT_EQ(platform_->lines(), (Calls{"getAndSaveBannerImage(): Passed data is empty"}));
  EXPECT_EQ(platform_->bytes("TavloCache/" + kName), "older");
}

TEST_F(BannerImages, AFailedWriteIsToldAndLeavesTheOlderImage) {
  platform_->putFile("TavloCache/" + kName, "older");
  fail("writeToFileAtomically TavloCache/" + kName);
  TavloUtility::cachedBannerImage(kUrl);

  platform_->runTask();

  EXPECT_EQ(platform_->lines(), (Calls{kPathLine, "getAndSaveBannerImage(): ERROR - write failed"}));
  EXPECT_EQ(platform_->bytes("TavloCache/" + kName), "older");
}

TEST_F(BannerImages, WithoutADirectoryTheTaskAddsNoLineOfItsOwn) {
  TavloUtility::cachedBannerImage(kUrl);
  static_cast<void>(
      platform_->files().removeItemAtPath(CachePlatform::path("TavloCache"), platform::Removal::anything));
  fail("createDirectoryAtPath TavloCache");

  platform_->runTask();

  EXPECT_EQ(platform_->lines(), (Calls{"Couldn't create directory TavloCache error: broken"}));
}

TEST_F(BannerImages, WithoutADirectoryTheLookUpSaysThatThereIsNone) {
  platform_->files().hasDocuments = false;

  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(kUrl), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory (null)", "createDirectoryAtPath (null)",
                   "log Couldn't create directory TavloCache error: No such file or directory: (no path)",
                   "fileExistsAtPath (null)",
                   "log getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist"}));
}

TEST_F(BannerImages, BlanksAtTheEndsMakeNoDifference) {
  TavloUtility::cachedBannerImage(" \thttp://h/a.png \xE3\x80\x80");
  platform_->runTask();

  EXPECT_TRUE(TavloUtility::getCacheBannerImagePath(" http://h/a.png  "));
  EXPECT_TRUE(TavloUtility::getCacheBannerImagePath(kUrl));
  EXPECT_EQ(platform_->names("TavloCache"), (Calls{kName}));
}

TEST_F(BannerImages, ATrailingNewlineIsStoredUnderOneNameAndLookedUpUnderAnother) {
  platform_->urlContents["http://h/a.png\n"] = "image";
  TavloUtility::cachedBannerImage(" http://h/a.png\n");
  platform_->runTask();

  EXPECT_EQ(TavloUtility::getCacheBannerImagePath("http://h/a.png\n"), std::nullopt);

  EXPECT_EQ(platform_->names("TavloCache"), (Calls{"c0fee1d34998168180421aa8343f504b"}));
  EXPECT_EQ(platform_->lines(),
            (Calls{"Cached directory path : /app/Documents/TavloCache/c0fee1d34998168180421aa8343f504b",
                   "getAndSaveBannerImage() - write successfully", kPathLine,
                   "getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist"}));
}

struct NoUrl {
  const char* name;
  Text url;
};

class BannerWithoutAUrl : public testing::TestWithParam<NoUrl> {};

TEST_P(BannerWithoutAUrl, IsToldByTheReaderBeforeAnyFileIsTouched) {
  const InstalledPlatform<CachePlatform> platform;

  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(GetParam().url), std::nullopt);

  EXPECT_EQ(platform->calls(), (Calls{"log getCacheBannerImagePath() - ERROR: Passed file url parameter is nil"}));
}

TEST_P(BannerWithoutAUrl, HasNoDataForTheWriter) {
  const InstalledPlatform<CachePlatform> platform;
  TavloUtility::cachedBannerImage(GetParam().url);

  platform->runTask();

  EXPECT_EQ(platform->lines(), (Calls{"getAndSaveBannerImage(): Passed data is empty"}));
}

INSTANTIATE_TEST_SUITE_P(Urls, BannerWithoutAUrl,
                         testing::Values(NoUrl{"Absent", std::nullopt}, NoUrl{"Empty", ""}, NoUrl{"Blank", " \t"},
                                         NoUrl{"Newlines", "\n\r\n"}),
                         kCaseName);

TEST_F(BannerImages, AnImageTooLargeForTheMemoryIsNoData) {
  platform_->onFetch = [] { throw std::bad_alloc(); };
  TavloUtility::cachedBannerImage(kUrl);

  platform_->runTask();

  EXPECT_EQ(platform_->lines(), (Calls{"getAndSaveBannerImage(): Passed data is empty"}));
}

TEST_F(BannerImages, AWriteThatRunsOutOfMemoryIsToldAsFailed) {
  platform_->onFileCall = [](const std::string& call) -> Text {
    if (call.starts_with("writeToFileAtomically")) throw std::bad_alloc();
    return std::nullopt;
  };
  TavloUtility::cachedBannerImage(kUrl);

  platform_->runTask();

  EXPECT_EQ(platform_->lines(), (Calls{kPathLine, "getAndSaveBannerImage(): ERROR - write failed"}));
}

TEST(BannerTask, KeepsNoPlatformAlive) {
  const auto platform = std::make_shared<CachePlatform>();
  platform::install(platform);

  TavloUtility::cachedBannerImage(kUrl);
  platform::install(nullptr);

  EXPECT_EQ(platform->waitingTasks(), 1U);
  EXPECT_EQ(platform.use_count(), 1);
}

}  // namespace
}  // namespace tavlo::test
