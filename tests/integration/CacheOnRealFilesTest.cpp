// The cache's scenarios on real files, and what only real files can show.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/integration/RealWorld.h"
#include "tests/support/CacheListScenarios.h"
#include "tests/support/CachePathScenarios.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

INSTANTIATE_TYPED_TEST_SUITE_P(OnRealFiles, CachePaths, RealWorld);
INSTANTIATE_TYPED_TEST_SUITE_P(OnRealFiles, CachedLists, RealWorld);

class CacheOnRealFiles : public testing::Test {
 protected:
  RealWorld world_;
};

TEST_F(CacheOnRealFiles, TheErrorTellsTheSystemsReasonAndThePath) {
  world_.loseDocuments();

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(TavloUtility::getCacheVideoDataPath("http://h/v/a.mp4"), std::nullopt);
  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("a.mp4"), std::nullopt);
  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  const std::string line = "Couldn't create directory TavloCache error: Not a directory: DOCUMENTS/TavloCache";
  EXPECT_EQ(world_.takeLines(), (Lines{line, line, line, line}));
}

TEST_F(CacheOnRealFiles, TheDirectoryIsItsUsersAlone) {
  ASSERT_TRUE(TavloUtility::getDocumentDirectoryPath("a"));

  EXPECT_EQ(fs::status(world_.place("TavloCache")).permissions(), fs::perms::owner_all);
}

TEST_F(CacheOnRealFiles, DocumentsAreMadeWhenTheyAreMissing) {
  fs::remove(world_.documents());

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), world_.place("TavloCache/a"));
}

TEST_F(CacheOnRealFiles, DocumentsThatAreRemovedLaterAreMadeAgain) {
  ASSERT_TRUE(TavloUtility::getDocumentDirectoryPath("a"));
  ASSERT_EQ(world_.takeLines().size(), 2U);
  fs::remove_all(world_.documents());

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), world_.place("TavloCache/a"));

  EXPECT_EQ(world_.takeLines(),
            (Lines{"TavloCache directory created!", "Cached directory path : DOCUMENTS/TavloCache/a"}));
  EXPECT_EQ(world_.names(""), (Lines{"TavloCache"}));
}

TEST_F(CacheOnRealFiles, ALinkToADirectoryServesAsTheDirectory) {
  world_.putFolder("elsewhere");
  fs::create_directory_symlink(world_.place("elsewhere"), world_.place("TavloCache"));
  world_.put("elsewhere/a.mp4", "video");

  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("a.mp4"), world_.place("TavloCache/a.mp4"));
}

TEST_F(CacheOnRealFiles, ADanglingLinkOfItsNameIsInTheWay) {
  fs::create_symlink(world_.place("nowhere"), world_.place("TavloCache"));

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), std::nullopt);

  EXPECT_EQ(world_.takeLines(),
            (Lines{"Couldn't create directory TavloCache error: File exists: DOCUMENTS/TavloCache"}));
}

TEST_F(CacheOnRealFiles, AFifoOfItsNameIsReplaced) {
  ASSERT_EQ(::mkfifo(world_.place("TavloCache").c_str(), 0600), 0);

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), world_.place("TavloCache/a"));
}

TEST_F(CacheOnRealFiles, AListThatIsAFifoIsAbsentAndBlocksNobody) {
  world_.putFolder("TavloCache");
  ASSERT_EQ(::mkfifo(world_.place("TavloCache/VideoListAPI").c_str(), 0600), 0);

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(world_.names("TavloCache"), (Lines{"VideoListAPI"}));
}

// Stored names are the SDK's own, and are not looked into.
TEST_F(CacheOnRealFiles, AStoredNameMayLeadOutOfTheCache) {
  world_.putFolder("TavloCache");
  world_.put("beside", "x");

  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("../beside"), world_.place("TavloCache/../beside"));
  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("../beside"), world_.place("TavloCache/../beside"));
}

TEST_F(CacheOnRealFiles, LinksAreClearedAndNeverFollowed) {
  world_.putFolder("TavloCache");
  world_.putFolder("TavloCache/sub");
  world_.putFolder("outside");
  world_.put("outside/precious", "x");
  fs::create_directory_symlink(world_.place("outside"), world_.place("TavloCache/to-a-folder"));
  fs::create_directory_symlink(world_.place("outside"), world_.place("TavloCache/sub/to-a-folder"));
  fs::create_symlink(world_.place("outside/precious"), world_.place("TavloCache/to-a-file"));
  fs::create_symlink(world_.place("nowhere"), world_.place("TavloCache/to-nothing"));

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache"), Lines{});
  EXPECT_EQ(world_.names("outside"), (Lines{"precious"}));
}

TEST_F(CacheOnRealFiles, AFifoIsCleared) {
  world_.putFolder("TavloCache");
  ASSERT_EQ(::mkfifo(world_.place("TavloCache/fifo").c_str(), 0600), 0);

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache"), Lines{});
}

TEST_F(CacheOnRealFiles, ALogThatIsAFolderIsKeptToo) {
  world_.putFolder("TavloCache");
  world_.putFolder("TavloCache/TavloLogFile.txt");
  world_.put("TavloCache/TavloLogFile.txt/x", "x");

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache/TavloLogFile.txt"), (Lines{"x"}));
}

TEST_F(CacheOnRealFiles, ALogThatIsALinkIsKeptTooEvenToNothing) {
  world_.putFolder("TavloCache");
  fs::create_symlink(world_.place("nowhere"), world_.place("TavloCache/TavloLogFile.txt"));

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
}

TEST_F(CacheOnRealFiles, DeletionOfALinkLeavesItsTarget) {
  world_.put("target", "x");
  fs::create_symlink(world_.place("target"), world_.place("link"));

  EXPECT_TRUE(TavloUtility::deleteCachedVideo(world_.place("link")));

  EXPECT_EQ(world_.names(""), (Lines{"target"}));
}

}  // namespace
}  // namespace tavlo::test
