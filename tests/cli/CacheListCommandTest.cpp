// cache list, put-list and sort.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cache/KeyedArchive.h"
#include "tests/cli/CacheProgramTest.h"

namespace tavlo::cli::test {
namespace {

using testing::ElementsAre;

class CacheListCommandTest : public CacheProgramTest {};

TEST_F(CacheListCommandTest, ListIsPrintedForPeopleAndInOneLine) {
  put("VideoListAPI", fixture("device_one_record.bin"));

  EXPECT_EQ(cache({"list", "video"}), (Result{0, R"([
  {
    "startdate": {"$date": 1727896733.134},
    "videourl": "http://cdn0.example.com/media/522c4f8d6102dd7063e8540e9dd8904f/clip_1.mp4?v=35",
    "campaignid": "100001",
    "title": "Campaign 1",
    "duration": 16,
    "ecpm": 67.573,
    "skippable": false
  }
]
)",
                                              ""}));
  EXPECT_EQ(cache({"list", "video", "--json"}),
            (Result{0,
                    R"([{"startdate":{"$date":1727896733.134},"videourl":"http://cdn0.example.com/media/)"
                    R"(522c4f8d6102dd7063e8540e9dd8904f/clip_1.mp4?v=35","campaignid":"100001","title":"Campaign 1",)"
                    R"("duration":16,"ecpm":67.573,"skippable":false}])"
                    "\n",
                    ""}));
}

TEST_F(CacheListCommandTest, MissingListEmptiesTheCacheAndIsAbsent) {
  put("VideoListAPI", fixture("device_one_record.bin"));
  put("image", "1");

  const std::string notes = "tavlo: note: getFileData() - ERROR: This file  does not exist\ntavlo: note: without " +
                            path("InterstitialListAPI") +
                            " the cache has been cleared, all but the log file, as in an app\n";
  EXPECT_EQ(cache({"list", "interstitial"}), (Result{0, "(null)\n", notes}));
  EXPECT_EQ(cache({"list", "interstitial", "--json"}), (Result{0, "null\n", notes}));

  EXPECT_THAT(names(), ElementsAre("TavloLogFile.txt"));
}

TEST_F(CacheListCommandTest, ListThatIsNothingAtAllIsNoMissingOne) {
  put("VideoListAPI", keyed_archive::encode(std::nullopt));

  EXPECT_EQ(cache({"list", "video"}), (Result{0, "(null)\n", ""}));
  EXPECT_EQ(cache({"list", "video", "--json"}), (Result{0, "null\n", ""}));
}

TEST_F(CacheListCommandTest, ListThatCannotBeReadIsAFailure) {
  std::filesystem::create_directories(path("VideoListAPI"));

  EXPECT_EQ(cache({"list", "video"}), (Result{1, "",
                                              "tavlo: cannot read " + path("VideoListAPI") +
                                                  "; check that it is a regular file, and the rights to it\n"}));
}

TEST_F(CacheListCommandTest, WhatIsNoArchiveIsOneLineAndNoAnswer) {
  for (const std::string& bytes : {std::string(), std::string("nonsense\n\x1b[31m"), std::string("bplist00"),
                                   std::string("<?xml version=\"1.0\"?><plist/>")}) {
    put("VideoListAPI", bytes);

    const Result bad = cache({"list", "video", "--json"});

    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(bad.out, "");
    EXPECT_THAT(bad.err, testing::StartsWith("tavlo: " + path("VideoListAPI") + ": "));
    EXPECT_THAT(bad.err, testing::EndsWith("; write a new list with put-list, or remove this one\n"));
    EXPECT_EQ(std::count(bad.err.begin(), bad.err.end(), '\n'), 1);
  }
}

TEST_F(CacheListCommandTest, WhatSharingMakesTooLargeIsOneLineAndNoAnswer) {
  Value value = Value::list({});
  for (int level = 0; level < 40; ++level) value = Value::list({value, value});
  put("VideoListAPI", keyed_archive::encode(value));
  ASSERT_LT(contents("VideoListAPI").size(), 4096U);

  for (const char* const look : {"--json", "--quiet"}) {
    EXPECT_EQ(cache({"list", "video", look}),
              (Result{1, "",
                      "tavlo: " + path("VideoListAPI") +
                          " cannot be printed: its contents take more than 67108864 bytes as text (what is shared "
                          "counts each time); apps can read it all the same, and put-list replaces it\n"}));
  }
}

TEST_F(CacheListCommandTest, PutListPrintsThePathAndListPrintsTheSameAgain) {
  const std::string json = R"([{"startdate":{"$date":1700000000.5},"n":null},{"$set":["a"]},{"$null":true}])";

  EXPECT_EQ(cache({"put-list", "video", "-"}, {.input = json}), (Result{0, path("VideoListAPI") + "\n", ""}));
  EXPECT_EQ(cache({"put-list", "interstitial", "-", "--json"}, {.input = "null"}),
            (Result{0, "\"" + path("InterstitialListAPI") + "\"\n", ""}));

  EXPECT_EQ(cache({"list", "video", "--json"}), (Result{0, json + "\n", ""}));
  EXPECT_EQ(cache({"list", "interstitial", "--json"}), (Result{0, "null\n", ""}));
}

TEST_F(CacheListCommandTest, EveryFixtureGoesThroughTheProgramUnchanged) {
  for (const std::string name :
       {"desktop_custom_list", "desktop_dates", "desktop_five_records", "desktop_sets", "desktop_urls",
        "device_custom_list", "device_empty_list", "device_five_records", "device_nested", "device_one_record",
        "device_root_string", "device_shared", "device_types"}) {
    put("VideoListAPI", fixture(name + ".bin"));
    const Result listed = cache({"list", "video"});
    EXPECT_EQ(nlohmann::json::parse(listed.out), nlohmann::json::parse(fixture(name + ".json")).at("root")) << name;

    ASSERT_EQ(cache({"put-list", "interstitial", "-"}, {.input = listed.out}).exitCode, 0) << name;

    EXPECT_EQ(cache({"list", "interstitial"}), listed) << name;
  }
}

TEST_F(CacheListCommandTest, MistakeInTheJsonIsToldAndTheOldListStands) {
  put("VideoListAPI", "old");

  EXPECT_EQ(cache({"put-list", "video", "-"}, {.input = "[\n{\"startdate\": {\"$date\": \"x\"}}]"}),
            (Result{1, "",
                    "tavlo: standard input:2: [0].startdate.$date: expected seconds, a number of at most 64 bits, or "
                    "\"inf\", \"-inf\", \"nan\" or \"nan:\" and the 64 bits of one\n"}));

  EXPECT_EQ(contents("VideoListAPI"), "old");
}

TEST_F(CacheListCommandTest, ValueThatNoArchiveHoldsIsAFailure) {
  const Result refused = cache({"put-list", "video", "-"}, {.input = "[{\"$uid\": 7}]"});

  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.out, "");
  EXPECT_THAT(refused.err, testing::StartsWith("tavlo: VideoListAPI was not written: "));
  EXPECT_THAT(refused.err,
              testing::EndsWith("; give a value that a keyed archive of at most 4194304 bytes can hold\n"));
}

TEST_F(CacheListCommandTest, NestingIsAsDeepAsInAnArchiveAndNoDeeper) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };

  EXPECT_EQ(cache({"put-list", "video", "-"}, {.input = nested(100)}).exitCode, 0);
  EXPECT_EQ(cache({"list", "video", "--json"}).out, nested(100) + "\n");
  for (const std::size_t depth : {600U, 2049U, 1000000U}) {
    const Result refused = cache({"put-list", "video", "-"}, {.input = nested(depth)});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1) << refused.err;
  }
}

TEST_F(CacheListCommandTest, DirectoryThatCannotBeMadeIsAFailureThatSaysWhy) {
  std::filesystem::create_directories(container());
  tavlo::test::writeFile(container() + "/Documents", "in the way");

  const Result refused = cache({"put-list", "video", "-"}, {.input = "[]"});

  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(refused.err,
            "tavlo: note: Couldn't create directory TavloCache error: Not a directory: " + directory() +
                "\ntavlo: VideoListAPI was not written: there is no cache directory for it, and none could "
                "be made; the log says why; check the rights to the Documents directory and the free "
                "space\n");
}

TEST_F(CacheListCommandTest, ArchivesThatAreTooLargeAreToldWithTheirPlaceAndTheLimit) {
  EXPECT_EQ(
      cache({"put-list", "video", "-"}, {.input = '"' + std::string(4'194'304, 'a') + '"'}),
      (Result{1, "",
              "tavlo: VideoListAPI was not written: 4194447 bytes; an archive of more than 4194304 is not written; "
              "give a value that a keyed archive of at most 4194304 bytes can hold\n"}));
  put("VideoListAPI", std::string(4'194'305, 'a'));
  EXPECT_EQ(cache({"list", "video"}),
            (Result{1, "",
                    "tavlo: " + path("VideoListAPI") +
                        ": 4194305 bytes; an archive of more than 4194304 is not read; write a new list with "
                        "put-list, or remove this one\n"}));
}

TEST_F(CacheListCommandTest, NoDirectoryForTheListIsAbsentAndNothingIsCleared) {
  std::filesystem::create_directories(container());
  tavlo::test::writeFile(container() + "/Documents", "in the way");

  EXPECT_EQ(
      cache({"list", "video"}),
      (Result{0, "(null)\n",
              "tavlo: note: Couldn't create directory TavloCache error: Not a directory: " + directory() + "\n"}));
}

TEST_F(CacheListCommandTest, ListThatCannotBeReplacedIsAFailureWithoutANote) {
  std::filesystem::create_directories(path("VideoListAPI/in the way"));

  const Result refused = cache({"put-list", "video", "-"}, {.input = "[]"});

  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.out, "");
  EXPECT_THAT(refused.err, testing::StartsWith("tavlo: VideoListAPI was not written: "));
}

TEST_F(CacheListCommandTest, NamesOfFieldsThatBeginWithADollarComeBackAsTheyWere) {
  const std::string json = R"({"$class":"Ad","$fields":[["$class",1],["$$class",2],["$date",3],["$0",4],["",5]]})";

  ASSERT_EQ(cache({"put-list", "video", "-"}, {.input = json}).exitCode, 0);

  EXPECT_EQ(cache({"list", "video", "--json"}), (Result{0, json + "\n", ""}));
}

TEST_F(CacheListCommandTest, FileThatIsNotThereIsAFailure) {
  const std::string message =
      "tavlo: cannot read /nowhere.json: No such file or directory; give a file that is there and can be read\n";

  EXPECT_EQ(cache({"put-list", "video", "/nowhere.json"}), (Result{1, "", message}));
  EXPECT_EQ(cache({"sort", "/nowhere.json"}), (Result{1, "", message}));
}

TEST_F(CacheListCommandTest, SortPrintsTheRecordsByTheirStartDates) {
  const std::string json =
      R"([{"startdate":{"$date":5.0},"n":1},{"startdate":{"$date":-1.5},"n":2},{"n":3},{"startdate":{"$date":5.0},"n":4}])";

  EXPECT_EQ(cache({"sort", "-", "--json"}, {.input = json}),
            (Result{0,
                    R"([{"n":3},{"startdate":{"$date":-1.5},"n":2},{"startdate":{"$date":5.0},"n":1},)"
                    R"({"startdate":{"$date":5.0},"n":4}])"
                    "\n",
                    ""}));
  EXPECT_EQ(cache({"sort", "-"}, {.input = "[]"}), (Result{0, "[]\n", ""}));
  EXPECT_EQ(cache({"sort", "-"}, {.input = "null"}), (Result{0, "(null)\n", ""}));
  EXPECT_FALSE(std::filesystem::exists(container()));
}

TEST_F(CacheListCommandTest, SortTakesListsOnly) {
  EXPECT_EQ(cache({"sort", "-"}, {.input = "{\"a\": 1}"}),
            (Result{1, "",
                    "tavlo: standard input holds no list; give [...] or {\"$set\": [...]}, as tavlo cache list prints "
                    "it\n"}));
}

}  // namespace
}  // namespace tavlo::cli::test
