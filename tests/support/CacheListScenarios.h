// The cached lists, clearing and deletion, as scenarios that hold in any world (CacheWorlds.h).
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TavloUtility.h"
#include "cache/KeyedArchive.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

using Lines = std::vector<std::string>;

template <class World>
class CachedLists : public testing::Test {
 protected:
  // A cache with one of everything.
  void fill() {
    for (const char* const folder : {"TavloCache", "TavloCache/sub", "TavloCache/sub/deep", "TavloCache/.hidden"}) {
      world_.putFolder(folder);
    }
    for (const char* const file : {"TavloCache/TavloLogFile.txt", "TavloCache/tavlologfile.txt",
                                   "TavloCache/TavloLogFile.txt ", "TavloCache/.dot", "TavloCache/a.mp4",
                                   "TavloCache/sub/b", "TavloCache/sub/deep/c", "TavloCache/sub/TavloLogFile.txt"}) {
      world_.put(file, "x");
    }
  }
  // An archive whose root is the text "just a string".
  [[nodiscard]] static std::string archive() {
    return readFile(TAVLO_SOURCE_DIR "/tests/fixtures/archives/device_root_string.bin");
  }

  World world_;
};

TYPED_TEST_SUITE_P(CachedLists);

TYPED_TEST_P(CachedLists, EachFlagReadsItsOwnList) {
  this->world_.putFolder("TavloCache");
  this->world_.put("TavloCache/VideoListAPI", this->archive());
  this->world_.put("TavloCache/InterstitialListAPI",
                   readFile(TAVLO_SOURCE_DIR "/tests/fixtures/archives/device_empty_list.bin"));

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), Value("just a string"));
  EXPECT_EQ(TavloUtility::getCachedVideoList(false), Value::list({}));

  EXPECT_EQ(this->world_.takeLines(), (Lines{"Cached directory path : DOCUMENTS/TavloCache/VideoListAPI",
                                             "Cached directory path : DOCUMENTS/TavloCache/InterstitialListAPI"}));
}

TYPED_TEST_P(CachedLists, AMissingListEmptiesTheCacheButForTheLog) {
  this->fill();
  this->world_.put("TavloCache/InterstitialListAPI", this->archive());

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(), (Lines{"Cached directory path : DOCUMENTS/TavloCache/VideoListAPI",
                                             "getFileData() - ERROR: This file  does not exist"}));
  EXPECT_EQ(this->world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
}

TYPED_TEST_P(CachedLists, AMissingInterstitialListTakesTheVideoListAlong) {
  this->fill();
  this->world_.put("TavloCache/VideoListAPI", this->archive());

  EXPECT_EQ(TavloUtility::getCachedVideoList(false), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(), (Lines{"Cached directory path : DOCUMENTS/TavloCache/InterstitialListAPI",
                                             "getFileData() - ERROR: This file  does not exist"}));
  EXPECT_EQ(this->world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
}

TYPED_TEST_P(CachedLists, AMissingListInAnEmptyCacheIsToldAsWell) {
  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"TavloCache directory created!", "Cached directory path : DOCUMENTS/TavloCache/VideoListAPI",
                   "getFileData() - ERROR: This file  does not exist"}));
  EXPECT_EQ(this->world_.names("TavloCache"), Lines{});
}

TYPED_TEST_P(CachedLists, AListThatCannotBeReadIsAbsentWithoutALine) {
  this->world_.putFolder("TavloCache");
  this->world_.putFolder("TavloCache/VideoListAPI");
  this->world_.put("TavloCache/a.mp4", "x");

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(), (Lines{"Cached directory path : DOCUMENTS/TavloCache/VideoListAPI"}));
  EXPECT_EQ(this->world_.names("TavloCache"), (Lines{"VideoListAPI", "a.mp4"}));
}

TYPED_TEST_P(CachedLists, BytesThatAreNoArchiveReachTheCaller) {
  this->world_.putFolder("TavloCache");

  for (const char* const bytes : {"", "no archive", "bplist00"}) {
    this->world_.put("TavloCache/VideoListAPI", bytes);
    EXPECT_THROW(static_cast<void>(TavloUtility::getCachedVideoList(true)), ArchiveError) << bytes;
  }

  EXPECT_EQ(this->world_.names("TavloCache"), (Lines{"VideoListAPI"}));
}

TYPED_TEST_P(CachedLists, TheErrorNamesTheFile) {
  this->world_.putFolder("TavloCache");
  this->world_.put("TavloCache/InterstitialListAPI", "no archive");

  try {
    static_cast<void>(TavloUtility::getCachedVideoList(false));
    FAIL() << "no error";
  } catch (const ArchiveError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith(this->world_.place("TavloCache/InterstitialListAPI") + ": "));
  }
}

TYPED_TEST_P(CachedLists, ClearingKeepsTheLogFileAndTheDirectory) {
  this->fill();

  TavloUtility::clearCache();

  EXPECT_EQ(this->world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
  EXPECT_EQ(this->world_.bytes("TavloCache/TavloLogFile.txt"), "x");
  EXPECT_EQ(this->world_.takeLines(), Lines{});
}

TYPED_TEST_P(CachedLists, ClearingAMissingDirectoryDoesNotMakeIt) {
  TavloUtility::clearCache();

  EXPECT_EQ(this->world_.names(""), Lines{});
  EXPECT_EQ(this->world_.takeLines(), Lines{});
}

TYPED_TEST_P(CachedLists, ClearingAPlainFileOfItsNameLeavesIt) {
  this->world_.put("TavloCache", "squatter");

  TavloUtility::clearCache();

  EXPECT_EQ(this->world_.bytes("TavloCache"), "squatter");
}

TYPED_TEST_P(CachedLists, ClearingTouchesNothingBesideTheDirectory) {
  this->fill();
  this->world_.put("beside", "x");

  TavloUtility::clearCache();

  EXPECT_EQ(this->world_.names(""), (Lines{"TavloCache", "beside"}));
}

TYPED_TEST_P(CachedLists, ADeletedFileIsGone) {
  this->fill();

  EXPECT_TRUE(TavloUtility::deleteCachedVideo(this->world_.place("TavloCache/a.mp4")));

  EXPECT_EQ(this->world_.bytes("TavloCache/a.mp4"), "(no file)");
  EXPECT_EQ(this->world_.takeLines(), Lines{});
}

TYPED_TEST_P(CachedLists, DeletionTakesAFolderWithAllInItAndAnyPlace) {
  this->fill();
  this->world_.put("beside", "x");

  EXPECT_TRUE(TavloUtility::deleteCachedVideo(this->world_.place("TavloCache")));
  EXPECT_TRUE(TavloUtility::deleteCachedVideo(this->world_.place("beside")));

  EXPECT_EQ(this->world_.names(""), Lines{});
}

TYPED_TEST_P(CachedLists, DeletingWhatIsNotThereFails) {
  this->fill();

  EXPECT_FALSE(TavloUtility::deleteCachedVideo(this->world_.place("TavloCache/gone")));
  EXPECT_FALSE(TavloUtility::deleteCachedVideo("a.mp4"));  // a name is no path
  EXPECT_FALSE(TavloUtility::deleteCachedVideo(""));
  EXPECT_FALSE(TavloUtility::deleteCachedVideo(std::nullopt));

  EXPECT_EQ(this->world_.takeLines(), Lines{});
}

REGISTER_TYPED_TEST_SUITE_P(CachedLists, EachFlagReadsItsOwnList, AMissingListEmptiesTheCacheButForTheLog,
                            AMissingInterstitialListTakesTheVideoListAlong, AMissingListInAnEmptyCacheIsToldAsWell,
                            AListThatCannotBeReadIsAbsentWithoutALine, BytesThatAreNoArchiveReachTheCaller,
                            TheErrorNamesTheFile, ClearingKeepsTheLogFileAndTheDirectory,
                            ClearingAMissingDirectoryDoesNotMakeIt, ClearingAPlainFileOfItsNameLeavesIt,
                            ClearingTouchesNothingBesideTheDirectory, ADeletedFileIsGone,
                            DeletionTakesAFolderWithAllInItAndAnyPlace, DeletingWhatIsNotThereFails);

}  // namespace tavlo::test
