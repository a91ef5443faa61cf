// What the cached lists, clearing and deletion ask of the platform, call by call.
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "tests/support/CachePlatform.h"
#include "tests/support/RecordingPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using Calls = std::vector<std::string>;

class CachedListCalls : public testing::Test {
 protected:
  CachedListCalls() { platform_->putFolder("TavloCache"); }

  void fail(const std::string& call) {
    platform_->onFileCall = [=](const std::string& made) { return made == call ? Text("broken") : std::nullopt; };
  }

  InstalledPlatform<CachePlatform> platform_;
};

TEST_F(CachedListCalls, AListIsReadOnlyAfterItWasFound) {
  platform_->putFile("TavloCache/VideoListAPI",
                     readFile(TAVLO_SOURCE_DIR "/tests/fixtures/archives/device_empty_list.bin"));

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), Value::list({}));

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache",
                   "log Cached directory path : /app/Documents/TavloCache/VideoListAPI",
                   "fileExistsAtPath TavloCache/VideoListAPI", "dataWithContentsOfFile TavloCache/VideoListAPI"}));
}

TEST_F(CachedListCalls, AMissingListIsToldOnlyAfterTheClearing) {
  platform_->putFile("TavloCache/TavloLogFile.txt", "log");
  platform_->putFile("TavloCache/a.mp4", "x");
  platform_->putFile("TavloCache/z.mp4", "x");

  EXPECT_EQ(TavloUtility::getCachedVideoList(false), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache",
                   "log Cached directory path : /app/Documents/TavloCache/InterstitialListAPI",
                   "fileExistsAtPath TavloCache/InterstitialListAPI", "documentDirectory",
                   "contentsOfDirectoryAtPath TavloCache", "removeItemAtPath TavloCache/a.mp4",
                   "removeItemAtPath TavloCache/z.mp4", "log getFileData() - ERROR: This file  does not exist"}));
}

TEST_F(CachedListCalls, AListThatGoesBetweenTheTestAndTheReadIsAbsentWithoutALine) {
  platform_->putFile("TavloCache/VideoListAPI", "x");
  platform_->onFileCall = [&](const std::string& call) {
    if (call == "dataWithContentsOfFile TavloCache/VideoListAPI") TavloUtility::clearCache();
    return Text();
  };

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(platform_->lines(), (Calls{"Cached directory path : /app/Documents/TavloCache/VideoListAPI"}));
}

TEST_F(CachedListCalls, WithoutADirectoryNothingIsClearedAndNoLineAdded) {
  static_cast<void>(
      platform_->files().removeItemAtPath(CachePlatform::path("TavloCache"), platform::Removal::anything));
  fail("createDirectoryAtPath TavloCache");

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "fileExistsAtPathIsDirectory TavloCache", "createDirectoryAtPath TavloCache",
                   "log Couldn't create directory TavloCache error: broken"}));
}

TEST_F(CachedListCalls, AReadErrorIsAbsentWithoutALine) {
  platform_->putFile("TavloCache/VideoListAPI", "x");
  fail("dataWithContentsOfFile TavloCache/VideoListAPI");

  EXPECT_EQ(TavloUtility::getCachedVideoList(true), std::nullopt);

  EXPECT_EQ(platform_->lines(), (Calls{"Cached directory path : /app/Documents/TavloCache/VideoListAPI"}));
}

TEST_F(CachedListCalls, ClearingGoesOnAfterAFailedRemoval) {
  for (const char* const name : {"a", "b", "c"}) platform_->putFile("TavloCache/" + std::string(name), "x");
  fail("removeItemAtPath TavloCache/b");

  TavloUtility::clearCache();

  EXPECT_EQ(platform_->calls(),
            (Calls{"documentDirectory", "contentsOfDirectoryAtPath TavloCache", "removeItemAtPath TavloCache/a",
                   "removeItemAtPath TavloCache/b", "removeItemAtPath TavloCache/c"}));
  EXPECT_EQ(platform_->names("TavloCache"), (Calls{"b"}));
}

TEST_F(CachedListCalls, AnUnreadableDirectoryEndsTheClearing) {
  platform_->putFile("TavloCache/a", "x");
  fail("contentsOfDirectoryAtPath TavloCache");

  TavloUtility::clearCache();

  EXPECT_EQ(platform_->calls(), (Calls{"documentDirectory", "contentsOfDirectoryAtPath TavloCache"}));
}

TEST_F(CachedListCalls, AFileWrittenAfterTheListingSurvives) {
  platform_->putFile("TavloCache/a", "x");
  platform_->onFileCall = [&](const std::string& call) {
    if (call == "removeItemAtPath TavloCache/a") platform_->putFile("TavloCache/new", "x");
    return Text();
  };

  TavloUtility::clearCache();

  EXPECT_EQ(platform_->names("TavloCache"), (Calls{"new"}));
}

TEST_F(CachedListCalls, DeletionIsOneRemovalOfThePathAsItStands) {
  EXPECT_FALSE(TavloUtility::deleteCachedVideo("../a//b"));
  EXPECT_FALSE(TavloUtility::deleteCachedVideo(std::nullopt));

  EXPECT_EQ(platform_->calls(), (Calls{"removeItemAtPath ../a//b", "removeItemAtPath (null)"}));
}

TEST(SortCachedVideoDates, AbsentGivesAbsent) { EXPECT_EQ(TavloUtility::sortCacahedVideoDates({}), std::nullopt); }

TEST(SortCachedVideoDates, ANewListIsOrderedAndTheOldOneStaysAsItWas) {
  const auto record = [](double date, const char* name) {
    return Value::map({{"startdate", Date{.seconds = date}}, {"name", name}});
  };
  const Value list = Value::list({record(2, "late"), record(-1, "early"), record(2, "later")});

  const auto sorted = TavloUtility::sortCacahedVideoDates(list);

  EXPECT_EQ(sorted, Value::list({record(-1, "early"), record(2, "late"), record(2, "later")}));
  EXPECT_EQ(list, Value::list({record(2, "late"), record(-1, "early"), record(2, "later")}));
}

TEST(SortCachedVideoDates, NoneAndOneRecordComeBackAsTheyWere) {
  const Value one = Value::list({Value::map({{"startdate", Date{.seconds = 1}}, {"name", "only"}})});
  const Value undated = Value::list({Value::map({{"name", "only"}})});

  EXPECT_EQ(TavloUtility::sortCacahedVideoDates(Value::list({})), Value::list({}));
  EXPECT_EQ(TavloUtility::sortCacahedVideoDates(Value::set({})), Value::list({}));
  EXPECT_EQ(TavloUtility::sortCacahedVideoDates(one), one);
  EXPECT_EQ(TavloUtility::sortCacahedVideoDates(undated), undated);
}

TEST(SortCachedVideoDates, ASetComesBackAsAList) {
  EXPECT_EQ(
      TavloUtility::sortCacahedVideoDates(Value::set({Value::map({{"startdate", 2}}), Value::map({{"startdate", 1}})})),
      Value::list({Value::map({{"startdate", 1}}), Value::map({{"startdate", 2}})}));
}

TEST(SortCachedVideoDates, WhatIsNoListIsAbsent) {
  for (const Value& value : {Value(), Value("a"), Value(1), Value::map({{"startdate", 1}})}) {
    EXPECT_EQ(TavloUtility::sortCacahedVideoDates(value), std::nullopt);
  }
}

}  // namespace
}  // namespace tavlo::test
