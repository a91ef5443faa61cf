#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

constexpr const char* kAdOfNothing =
    "appId=(null)&os_version=(null)&app_version=(null)&device_id=(null)&timestamp=(null)&app_bundle_name=(null)"
    "&sdk_version=4.1.0&token=(null)&advertisingID=(null)&limitedTracking=0&mac_address=(null)&device_type=(null)"
    "&mobile_no=(null)&email_address=(null)&connection_type=(null)&screen_density_x=(null)&screen_density_y=(null)"
    "&screen_height=(null)&carrier_name=(null)&screen_density_category=(null)&device_model=(null)&language=(null)"
    "&maturity_rating=(null)&asset_value=(null)&opt_userid=(null)&source=(null)&name=(null)&age=(null)&sex=(null)"
    "&location=(null)&marital_status=(null)&birthday=(null)&facebook_id=(null)&twitter_handle=(null)"
    "&education=(null)&nationality=(null)&Page=(null)&lat=(null)&long=(null)&address=(null)&sessionId=(null)\n";
constexpr const char* kInAppOfNothing =
    "app_id=(null)&os_version=(null)&app_version=(null)&device_id=(null)&timestamp=(null)&app_bundle_name=(null)"
    "&sdk_version=4.1.0&token=(null)&advertisingID=(null)&limitedTracking=0&device_type=(null)"
    "&connection_type=(null)&screen_density_x=(null)&screen_density_y=(null)&swidth=(null)&sheight=(null)"
    "&carrier_name=(null)&screen_density_category=(null)&device_model=(null)&language=(null)&opt_userid=(null)"
    "&os_id=(null)&Page=(null)&sessionId=(null)\n";
constexpr const char* kUserOfNothing = "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0\n";
constexpr const char* kTrackerOfNothing =
    R"j({"Key":"(null)","resolution":"0","preroll":"0","offerids":"0","appId":"(null)","os_version":"(null)",)j"
    R"j("app_version":"(null)","device_id":"(null)","Page":"(null)","token":"(null)","timestamp":"(null)",)j"
    R"j("app_bundle_name":"(null)","sdk_version":"4.1.0","advertisingID":"(null)","limitedTracking":"0",)j"
    R"j("device_type":"(null)","connection_type":"(null)","screen_density_x":"(null)","screen_density_y":"(null)",)j"
    R"j("swidth":"720","sheight":"(null)","screen_density_category":"(null)","carrier_name":"(null)",)j"
    R"j("device_model":"(null)","language":"(null)","ru":"0","uud":"0","uud_n":"(null)","uuw":"0","uuw_n":"0",)j"
    R"("uum":"0","uum_n":"0","user_id":"1234","track_id":"2423432432","network_event_count":[]})"
    "\n";

Result request(const std::string& name, const std::string& session, std::vector<std::string> more = {}) {
  more.insert(more.begin(), {"request", name, "--session", "-"});
  return run(more, {.input = session});
}

TEST(RequestCommandTest, EmptySessionGivesTheExactTexts) {
  ASSERT_EQ(std::string(kAdOfNothing).size(), 737U + 1);
  ASSERT_EQ(std::string(kInAppOfNothing).size(), 443U + 1);

  EXPECT_EQ(request("ad", "{}"), (Result{0, kAdOfNothing, ""}));
  EXPECT_EQ(request("in-app", "{}"), (Result{0, kInAppOfNothing, ""}));
  EXPECT_EQ(request("user", "{}"), (Result{0, kUserOfNothing, ""}));
  EXPECT_EQ(request("tracker", "{}"), (Result{0, kTrackerOfNothing, ""}));
}

TEST(RequestCommandTest, SessionsTakeNothingFromTheContainerAndWriteNothing) {
  const tavlo::test::TemporaryFolder folder;
  const std::string container = (folder / "container").string();
  ASSERT_EQ(run({"id", "set", "app", "stored", "--container", container}).exitCode, 0);
  ASSERT_EQ(run({"use", "--container", container}).exitCode, 0);
  const auto time = std::filesystem::last_write_time(container + "/Library");
  const std::vector<std::pair<const char*, const char*>> answers{
      {"ad", kAdOfNothing}, {"in-app", kInAppOfNothing}, {"user", kUserOfNothing}, {"tracker", kTrackerOfNothing}};

  for (const auto& [name, answer] : answers) {
    EXPECT_EQ(run({"request", name, "--session", "-", "--container", container}, {.input = "{}"}),
              (Result{0, answer, ""}));
    EXPECT_EQ(run({"request", name, "--session", "-", "--container", (folder / "other").string()}, {.input = "{}"}),
              (Result{0, answer, ""}));
  }

  EXPECT_FALSE(std::filesystem::exists(folder / "other"));
  EXPECT_EQ(std::filesystem::last_write_time(container + "/Library"), time);
}

TEST(RequestCommandTest, WithoutASessionWhatIsStoredIsUsedAndANoteSaysSo) {
  const tavlo::test::TemporaryFolder folder;
  const std::string container = folder.path().string();
  ASSERT_EQ(run({"id", "set", "app", "a b", "--container", container}).exitCode, 0);

  const Result told = run({"request", "in-app", "--container", container});
  const Result quiet = run({"--quiet", "request", "in-app", "--container", container});

  EXPECT_THAT(told.out, testing::StartsWith("app_id=a%20b&os_version=(null)&"));
  EXPECT_EQ(told.err, "tavlo: note: no session file is given: package values are absent, and what is stored in " +
                          container + " is used\n");
  EXPECT_EQ(quiet, (Result{0, told.out, ""}));
}

TEST(RequestCommandTest, IdentifiersOfASessionAreTakenAsTheyAre) {
  EXPECT_THAT(request("in-app", R"({"identifiers": {"ApplicationId": "", "OptionalId": "ü"}})").out,
              testing::AllOf(testing::StartsWith("app_id=&os_version="), testing::HasSubstr("&opt_userid=%C3%BC&")));
}

TEST(RequestCommandTest, CountersOfASessionAreSent) {
  EXPECT_EQ(request("user", R"({"uniqueUser": {"getIsUserNew": 1, "getUniqueUserDayValue": 1,
      "getUniqueUserDay": "320", "getUniqueUserWeekValue": -1, "getNumberOfWeek": 46,
      "getUniqueUserMonthValue": 2147483647, "getNumberOfMonth": -2147483648}})"),
            (Result{0, "&ru=1&ru_n=&uud=1&uud_n=320&uuw=-1&uuw_n=46&uum=2147483647&uum_n=-2147483648\n", ""}));
}

TEST(RequestCommandTest, TrackerRecordsKeepTheirKindAndAreToldOnStandardError) {
  const std::string session = R"({"trackerRecords": [
    {"networkID": 7, "event": "a/ü\"\n", "count": "3x"},
    {"networkID": 123456789012345678901234567890, "event": 1.5, "count": 2.0},
    {"networkID": "dropped", "event": null, "count": 0},
    {"count": 1},
    {}
  ]})";
  const std::string tail = R"("network_event_count":[{"network_id":7,"event":"a/ü\"\n","count":"3x"},)"
                           R"({"network_id":123456789012345678901234567890,"event":1.5,"count":2.0},{"count":1}]})"
                           "\n";

  const Result told = request("tracker", session);
  const Result quiet = request("tracker", session, {"--quiet"});

  EXPECT_THAT(told.out, testing::EndsWith(tail));
  EXPECT_EQ(told.err,
            "7  a/ü\"\n  3x\n123456789012345678901234567890  1.5  2\ndropped  (null)  0\n(null)  (null)  1\n"
            "(null)  (null)  (null)\n");
  EXPECT_EQ(quiet, (Result{0, told.out, ""}));
}

TEST(RequestCommandTest, JsonOptionMakesTextsJsonAndLeavesThePayload) {
  EXPECT_EQ(request("user", "{}", {"--json"}),
            (Result{0, "\"&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0\"\n", ""}));
  EXPECT_EQ(request("tracker", "{}", {"--json"}), (Result{0, kTrackerOfNothing, ""}));
}

TEST(RequestCommandTest, PrettyTellsAbsentFromEmptyAndShowsControlCharacters) {
  EXPECT_EQ(request("user", R"({"uniqueUser": {"getUniqueUserDay": "\u001b[2J\"ü"}})", {"--pretty"}),
            (Result{0,
                    "#  key    source                   raw             rendering  sent\n"
                    "1  ru     getIsUserNew             0               integer    \"0\"\n"
                    "2  ru_n                            \"\"              constant   \"\"\n"
                    "3  uud    getUniqueUserDayValue    0               integer    \"0\"\n"
                    "4  uud_n  getUniqueUserDay         \"\\u{1b}[2J\\\"ü\"  as is      \"\\u{1b}[2J\\\"ü\"\n"
                    "5  uuw    getUniqueUserWeekValue   0               integer    \"0\"\n"
                    "6  uuw_n  getNumberOfWeek          0               integer    \"0\"\n"
                    "7  uum    getUniqueUserMonthValue  0               integer    \"0\"\n"
                    "8  uum_n  getNumberOfMonth         0               integer    \"0\"\n",
                    ""}));
  const Result ad =
      request("ad", R"({"package": {"token": "", "page": "ä b", "limitAdTrackingEnabled": true}})", {"--pretty"});
  EXPECT_THAT(ad.out, testing::HasSubstr("\n1   appId                    applicationId            absent   encoded"
                                         "    \"(null)\"\n"));
  EXPECT_THAT(ad.out, testing::HasSubstr("\n8   token                    token                    \"\"       encoded"
                                         "    \"\"\n"));
  EXPECT_THAT(ad.out, testing::HasSubstr("\n10  limitedTracking          limitAdTrackingEnabled   1        boolean"
                                         "    \"1\"\n"));
  EXPECT_THAT(ad.out, testing::HasSubstr("\n37  Page                     page                     \"ä b\"    encoded"
                                         "    \"%C3%A4%20b\"\n"));
}

TEST(RequestCommandTest, PrettyTrackerShowsHowManyRecordsGaveTheList) {
  constexpr const char* kLone = R"({"trackerRecords": [{"count": 1}]})";
  constexpr const char* kTwo = R"({"trackerRecords": [{"networkID": "a/b", "count": 1}, {}]})";

  EXPECT_THAT(request("tracker", "{}", {"--pretty"}).out,
              testing::EndsWith("network_event_count      getNetworkTrackerDetails  absent        list       []\n"));
  EXPECT_THAT(request("tracker", kLone, {"--pretty"}).out,
              testing::EndsWith("getNetworkTrackerDetails  1 record      list       []\n"));
  EXPECT_THAT(
      request("tracker", kTwo, {"--pretty"}).out,
      testing::EndsWith("getNetworkTrackerDetails  2 records     list       [{\"network_id\":\"a/b\",\"count\":1}]\n"));
  EXPECT_EQ(request("tracker", kTwo, {"--pretty"}).err, "a/b  (null)  1\n(null)  (null)  (null)\n");
}

TEST(RequestCommandTest, PrettyJsonHasTheSameFields) {
  const Result result = request("user", R"({"uniqueUser": {"getNumberOfMonth": 11}})", {"--pretty", "--json"});

  EXPECT_THAT(result.out, testing::StartsWith(
                              R"([{"number":1,"key":"ru","source":"getIsUserNew","raw":"0","rendering":"integer",)"
                              R"("sent":"0"},{"number":2,"key":"ru_n","source":null,"raw":"","rendering":"constant",)"
                              R"("sent":""},)"));
  EXPECT_THAT(result.out, testing::HasSubstr(R"("source":"getUniqueUserDay","raw":null,"rendering":"as is",)"
                                             R"j("sent":"(null)"})j"));
  EXPECT_THAT(result.out, testing::EndsWith(R"("key":"uum_n","source":"getNumberOfMonth","raw":"11",)"
                                            R"("rendering":"integer","sent":"11"}])"
                                            "\n"));
}

TEST(RequestCommandTest, SessionFilesThatCannotBeReadAreOneLine) {
  const tavlo::test::TemporaryFolder folder;
  const std::string missing = (folder / "none.json").string();

  EXPECT_EQ(run({"request", "ad", "--session", missing}),
            (Result{1, "",
                    "tavlo: cannot read " + missing +
                        ": No such file or directory; give a file that is there and can be read\n"}));
  EXPECT_EQ(run({"request", "ad", "--session", folder.path().string()}),
            (Result{1, "",
                    "tavlo: cannot read " + folder.path().string() +
                        ": Is a directory; give a file that is there and can be read\n"}));
  EXPECT_EQ(
      run({"request", "ad", "--session", ""}),
      (Result{1, "", "tavlo: cannot read : No such file or directory; give a file that is there and can be read\n"}));
  EXPECT_EQ(run({"request", "ad", "--session", "/dev/zero"}),
            (Result{1, "", "tavlo: /dev/zero is longer than 16777216 bytes; give a shorter file\n"}));
}

TEST(RequestCommandTest, MistakesInASessionFileNameItsLine) {
  const tavlo::test::TemporaryFolder folder;
  const std::string file = (folder / "s.json").string();
  tavlo::test::writeFile(file, "{\n  \"package\": {\n    \"age\": 34\n  }\n}\n");

  EXPECT_EQ(run({"request", "tracker", "--session", file, "--quiet"}),
            (Result{1, "", "tavlo: " + file + ":3: package.age: expected a text or null, got an integer\n"}));
  EXPECT_EQ(run({"request", "ad", "--session", "-", "--pretty", "--json"}, {.input = "[]"}),
            (Result{1, "", "tavlo: standard input:1: expected an object, got a list\n"}));
}

}  // namespace
}  // namespace tavlo::cli::test
