// cache path, video, saved, banner, delete and clear.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/CacheProgramTest.h"

namespace tavlo::cli::test {
namespace {

using testing::ElementsAre;

namespace fs = std::filesystem;

constexpr const char* kVideoUrl = "http://h/a.mp4";
constexpr const char* kVideoName = "46a031da1eba2acf8ec285d177c677da.mp4";
constexpr const char* kBannerName = "46a031da1eba2acf8ec285d177c677da";

class CacheCommandTest : public CacheProgramTest {};

TEST_F(CacheCommandTest, PathMakesTheDirectoryAndLogsAsAnAppDoes) {
  EXPECT_EQ(cache({"path", "a.mp4"}), (Result{0, path("a.mp4") + "\n", ""}));
  EXPECT_EQ(cache({"path", "a.mp4", "--json"}), (Result{0, "\"" + path("a.mp4") + "\"\n", ""}));

  EXPECT_THAT(log(), ElementsAre("TavloCache directory created!", "Cached directory path : " + path("a.mp4"),
                                 "Cached directory path : " + path("a.mp4")));
}

TEST_F(CacheCommandTest, PathWithoutADirectoryIsAbsentAndSaysWhy) {
  fs::create_directories(container());
  tavlo::test::writeFile(container() + "/Documents", "in the way");

  const Result absent = cache({"path", "a.mp4"});

  EXPECT_EQ(absent.exitCode, 0);
  EXPECT_EQ(absent.out, "(null)\n");
  EXPECT_THAT(absent.err, testing::StartsWith("tavlo: note: "));
  EXPECT_EQ(cache({"path", "a.mp4", "--json", "--quiet"}), (Result{0, "null\n", ""}));
}

TEST_F(CacheCommandTest, VideoIsFoundUnderTheNameOfItsUrl) {
  put(kVideoName, "video");

  EXPECT_EQ(cache({"video", kVideoUrl}), (Result{0, path(kVideoName) + "\n", ""}));
  EXPECT_EQ(cache({"video", kVideoUrl, "--json"}), (Result{0, "\"" + path(kVideoName) + "\"\n", ""}));
}

TEST_F(CacheCommandTest, SavedVideoIsFoundUnderItsOwnName) {
  put("clip.mp4", "video");

  EXPECT_EQ(cache({"saved", "clip.mp4"}), (Result{0, path("clip.mp4") + "\n", ""}));
  EXPECT_EQ(cache({"saved", "[clip].mp4"}).out, "(null)\n");
}

TEST_F(CacheCommandTest, BannerIsFoundUnderTheDigestOfItsCleanedUrl) {
  put(kBannerName, "image");

  EXPECT_EQ(cache({"banner", kVideoUrl}), (Result{0, path(kBannerName) + "\n", ""}));
  EXPECT_EQ(cache({"banner", " http://h/\na.mp4\n"}), (Result{0, path(kBannerName) + "\n", ""}));
}

TEST_F(CacheCommandTest, WhatIsNotThereIsAbsentWithTheLineThatWasLogged) {
  EXPECT_EQ(
      cache({"video", kVideoUrl}),
      (Result{0, "(null)\n", "tavlo: note: getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist\n"}));
  EXPECT_EQ(cache({"saved", ""}),
            (Result{0, "(null)\n",
                    "tavlo: note: getCacheVideoPathOfSavedInDB() - ERROR: Passed file url parameter is nil\n"}));
  EXPECT_EQ(cache({"banner", kVideoUrl}),
            (Result{0, "(null)\n",
                    "tavlo: note: getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist\n"}));
  EXPECT_EQ(cache({"banner", kVideoUrl, "--json", "--quiet"}), (Result{0, "null\n", ""}));
}

TEST_F(CacheCommandTest, DeleteRemovesExactlyThatItem) {
  put("a", "1");
  put("b", "2");

  EXPECT_EQ(cache({"delete", path("a")}), (Result{0, "", ""}));
  EXPECT_EQ(cache({"delete", path("b"), "--json"}), (Result{0, "true\n", ""}));

  EXPECT_THAT(names(), ElementsAre());
}

TEST_F(CacheCommandTest, DeletingNothingIsAFailure) {
  put("a", "1");

  EXPECT_EQ(cache({"delete", "a", "--json"}),
            (Result{1, "",
                    "tavlo: nothing was removed at \"a\"; give the whole path of something that is there, and check "
                    "the rights to its folder\n"}));
  EXPECT_EQ(cache({"delete", ""}).exitCode, 1);

  EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(CacheCommandTest, ClearKeepsTheLogFileAlone) {
  put("TavloLogFile.txt", "kept");
  put("tavlologfile.txt", "1");
  put(".hidden", "2");
  fs::create_directories(path("folder/below"));

  EXPECT_EQ(cache({"clear"}), (Result{0, "", ""}));

  EXPECT_THAT(names(), ElementsAre("TavloLogFile.txt"));
  EXPECT_EQ(contents("TavloLogFile.txt"), "kept");
}

TEST_F(CacheCommandTest, ClearingWhatIsNotThereMakesNoCacheDirectory) {
  EXPECT_EQ(cache({"clear", "--json"}), (Result{0, "", ""}));

  EXPECT_FALSE(fs::exists(directory()));
}

}  // namespace
}  // namespace tavlo::cli::test
