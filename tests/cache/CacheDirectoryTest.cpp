// What the cache directory and the video look-ups ask of the platform, call by call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "tests/support/CachePlatform.h"
#include "tests/support/CaseName.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo::test {
namespace {

using Calls = std::vector<std::string>;

class CacheDirectory : public testing::Test {
 protected:
  // Fails the operation of this record with the description.
  void fail(const std::string& call, const std::string& description) {
    platform_->onFileCall = [=](const std::string& made) { return made == call ? Text(description) : std::nullopt; };
  }
  // Lets another thread act right before the operation of this record.
  void before(const std::string& call, const std::function<void()>& act) {
    platform_->onFileCall = [=](const std::string& made) {
      if (made == call) act();
      return Text();
    };
  }

  InstalledPlatform<CachePlatform> platform_;
};

TEST_F(CacheDirectory, IsLookedForAndMadeInThisOrder) {
  ASSERT_TRUE(TavloUtility::getDocumentDirectoryPath("a"));

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache", "createDirectoryAtPath TavloCache",
                   "log TavloCache directory created!", "log Cached directory path : /app/Documents/TavloCache/a"}));
}

TEST_F(CacheDirectory, IsOnlyLookedForWhenItIsThere) {
  platform_->putFolder("TavloCache");

  ASSERT_TRUE(TavloUtility::getDocumentDirectoryPath("a"));

  EXPECT_EQ(platform_->calls(), (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache",
                                       "log Cached directory path : /app/Documents/TavloCache/a"}));
}

TEST_F(CacheDirectory, AFileInTheWayIsRemovedAsAFile) {
  platform_->putFile("TavloCache", "squatter");

  ASSERT_TRUE(TavloUtility::getDocumentDirectoryPath("a"));

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache",
                   "log TavloCache directory is actually a file! .. removing it", "removeFileAtPath TavloCache",
                   "createDirectoryAtPath TavloCache", "log TavloCache directory created!",
                   "log Cached directory path : /app/Documents/TavloCache/a"}));
}

TEST_F(CacheDirectory, AFileInTheWayThatStaysIsToldWithItsError) {
  platform_->putFile("TavloCache", "squatter");
  fail("removeFileAtPath TavloCache", "Operation not permitted");

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache",
                   "log TavloCache directory is actually a file! .. removing it", "removeFileAtPath TavloCache",
                   "log TavloCache directory is actually a file! .. but failed removing it error: Operation not "
                   "permitted"}));
}

TEST_F(CacheDirectory, ADirectoryThatCannotBeMadeIsToldWithItsError) {
  fail("createDirectoryAtPath TavloCache", "No space left on device");

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache", "createDirectoryAtPath TavloCache",
                   "log Couldn't create directory TavloCache error: No space left on device"}));
}

TEST_F(CacheDirectory, ARemovedFileWhosePlaceCannotBeFilledIsToldAsWell) {
  platform_->putFile("TavloCache", "squatter");
  fail("createDirectoryAtPath TavloCache", "No space left on device");

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(platform_->lines(), (Calls{"TavloCache directory is actually a file! .. removing it",
                                       "Couldn't create directory TavloCache error: No space left on device"}));
}

TEST_F(CacheDirectory, TheLoserOfTwoMakersGetsNoPathThatOnce) {
  before("createDirectoryAtPath TavloCache", [&] { platform_->putFolder("TavloCache"); });

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);
  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), "/app/Documents/TavloCache/a");

  EXPECT_EQ(platform_->lines(),
            (Calls{"Couldn't create directory TavloCache error: File exists: /app/Documents/TavloCache",
                   "Cached directory path : /app/Documents/TavloCache/a"}));
}

TEST_F(CacheDirectory, ADirectoryThatAnotherThreadHasJustMadeIsNotRemoved) {
  platform_->putFile("TavloCache", "squatter");
  before("removeFileAtPath TavloCache", [&] {
    ASSERT_TRUE(platform_->files().removeItemAtPath(CachePlatform::path("TavloCache"), platform::Removal::fileOnly));
    platform_->putFolder("TavloCache");
    platform_->putFile("TavloCache/image", "of the winner");
  });

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(platform_->lines(),
            (Calls{"TavloCache directory is actually a file! .. removing it",
                   "TavloCache directory is actually a file! .. but failed removing it error: Is a directory: "
                   "/app/Documents/TavloCache"}));
  EXPECT_EQ(platform_->bytes("TavloCache/image"), "of the winner");
}

TEST_F(CacheDirectory, WithoutADocumentsDirectoryItCannotBeMade) {
  platform_->files().hasDocuments = false;

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory (null)", "createDirectoryAtPath (null)",
                   "log Couldn't create directory TavloCache error: No such file or directory: (no path)"}));
}

TEST_F(CacheDirectory, AVideoIsLookedForOnlyAfterItsDirectory) {
  EXPECT_EQ(TavloUtility::getCacheVideoDataPath("http://h/v/a.mp4"), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache", "createDirectoryAtPath TavloCache",
                   "log TavloCache directory created!",
                   "log Cached directory path : /app/Documents/TavloCache/a68d4b2f3ac163441bebacaf205897bb.mp4",
                   "fileExistsAtPath TavloCache/a68d4b2f3ac163441bebacaf205897bb.mp4",
                   "log getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist"}));
}

TEST_F(CacheDirectory, ALookUpWithoutItAddsNoLineOfItsOwn) {
  fail("createDirectoryAtPath TavloCache", "No space left on device");
  const Calls asked{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache", "createDirectoryAtPath TavloCache",
                    "log Couldn't create directory TavloCache error: No space left on device"};

  EXPECT_EQ(TavloUtility::getCacheVideoDataPath("http://h/v/a.mp4"), std::nullopt);
  EXPECT_EQ(platform_->calls(), asked);

  platform_->forget();
  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("a.mp4"), std::nullopt);
  EXPECT_EQ(platform_->calls(), asked);
}

TEST(CacheDirectoryWithoutAPlatform, AnswersNotAvailable) {
  const InstalledPlatform<platform::Platform> none;
  const Installed<Logger, RecordingLogger> logger;

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);
  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);
  EXPECT_FALSE(TavloUtility::deleteCachedVideo("/a"));
  TavloUtility::clearCache();
  TavloUtility::cachedBannerImage("http://h/a.png");
  EXPECT_EQ(none->urlData().dataWithContentsOfUrl("http://h/a.png"), std::nullopt);
  EXPECT_EQ(none->fileManager().dataWithContentsOfFile("/a"), std::nullopt);
  EXPECT_FALSE(none->fileManager().writeToFileAtomically("x", "/a", platform::Durable::contents));

  const std::string line = "Couldn't create directory TavloCache error: no file service is available";
  EXPECT_EQ(logger->lines, (Calls{line, line}));
}

struct Join {
  const char* name;
  Text directory;
  const char* component;
  Text path;
};

class AppendedPathComponent : public testing::TestWithParam<Join> {};

TEST_P(AppendedPathComponent, HasOneSlashInBetween) {
  EXPECT_EQ(appendedPathComponent(GetParam().directory, GetParam().component), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Joins, AppendedPathComponent,
    testing::Values(Join{"Plain", "/d", "a", "/d/a"}, Join{"SlashAtTheEnd", "/d/", "a", "/d/a"},
                    Join{"SlashesAtTheEnd", "/d//", "a", "/d/a"}, Join{"SlashInFront", "/d", "/a", "/d/a"},
                    Join{"SlashesOnBothSides", "/d/", "//a", "/d/a"}, Join{"SlashInside", "/d", "a//b", "/d/a//b"},
                    Join{"SlashBehind", "/d", "a/", "/d/a/"}, Join{"OnlyASlash", "/d", "/", "/d"},
                    Join{"EmptyDirectory", "", "a", std::nullopt}, Join{"EmptyName", "/d", "", "/d"},
                    Join{"Root", "/", "a", "/a"}, Join{"AbsentDirectory", std::nullopt, "a", std::nullopt}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
