#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

TEST(ContractCommandTest, TableShowsEachPair) {
  EXPECT_EQ(run({"contract", "user"}), (Result{0,
                                               "Unique-user fragment: getUserInfoRequestString, 8 pairs, each led by "
                                               "\"&\"\n"
                                               "\n"
                                               "#  key    source                   kind      rendering\n"
                                               "1  ru     getIsUserNew             integer   integer\n"
                                               "2  ru_n   \"\"                       constant  constant\n"
                                               "3  uud    getUniqueUserDayValue    integer   integer\n"
                                               "4  uud_n  getUniqueUserDay         text      as is\n"
                                               "5  uuw    getUniqueUserWeekValue   integer   integer\n"
                                               "6  uuw_n  getNumberOfWeek          integer   integer\n"
                                               "7  uum    getUniqueUserMonthValue  integer   integer\n"
                                               "8  uum_n  getNumberOfMonth         integer   integer\n",
                                               ""}));
}

TEST(ContractCommandTest, JsonHasEveryFieldOfAPair) {
  const Result ad = run({"contract", "ad", "--format", "json"});
  const Result tracker = run({"contract", "tracker", "--json"});

  EXPECT_THAT(ad.out,
              testing::StartsWith(R"({"name":"ad","title":"Ad request","operation":"getAdditionalRequestingString",)"
                                  R"("form":"joined","pairs":[{"number":1,"key":"appId","source":"applicationId",)"
                                  R"("kind":"text","rendering":"encoded","constant":null},)"));
  EXPECT_THAT(ad.out, testing::HasSubstr(R"({"number":7,"key":"sdk_version","source":null,"kind":"constant",)"
                                         R"("rendering":"constant","constant":"4.1.0"})"));
  EXPECT_THAT(ad.out, testing::HasSubstr(R"("source":"limitAdTrackingEnabled","kind":"truth value",)"
                                         R"("rendering":"boolean","constant":null})"));
  EXPECT_THAT(tracker.out, testing::HasSubstr(R"("form":"map","pairs":[{"number":1,"key":"Key")"));
  EXPECT_THAT(tracker.out,
              testing::EndsWith(R"({"number":35,"key":"network_event_count","source":"getNetworkTrackerDetails",)"
                                R"("kind":"list","rendering":"list","constant":null}]})"
                                "\n"));
}

TEST(ContractCommandTest, WithoutANameAllFourAreThere) {
  const Result table = run({"contract"});
  const Result json = run({"contract", "--json"});

  EXPECT_THAT(table.out, testing::StartsWith("Ad request: getAdditionalRequestingString, 41 pairs joined by \"&\"\n"));
  EXPECT_THAT(table.out, testing::HasSubstr("\n\nIn-app notification request: getInAppNotificationAdditionalRequest, "
                                            "24 pairs joined by \"&\"\n"));
  EXPECT_THAT(table.out, testing::HasSubstr("\n\nTracker payload: trackerNetworkSessionData, a map of 35 keys\n"));
  EXPECT_THAT(json.out, testing::StartsWith(R"([{"name":"ad",)"));
  EXPECT_THAT(json.out, testing::HasSubstr(R"(]},{"name":"in-app",)"));
  EXPECT_THAT(json.out, testing::HasSubstr(R"(]},{"name":"user",)"));
  EXPECT_THAT(json.out, testing::HasSubstr(R"(]},{"name":"tracker",)"));
}

TEST(ContractCommandTest, FormatWinsOverJson) {
  EXPECT_EQ(run({"contract", "user", "--json", "--format", "table"}), run({"contract", "user"}));
}

TEST(ContractCommandTest, MarkdownIsATable) {
  EXPECT_THAT(run({"contract", "user", "--format", "markdown"}).out,
              testing::StartsWith("## Unique-user fragment\n"
                                  "\n"
                                  "`getUserInfoRequestString`: 8 pairs, each led by \"&\".\n"
                                  "\n"
                                  "| # | Key | Source | Kind | Rendering | Personal data | Also sent in |\n"
                                  "|---|---|---|---|---|---|---|\n"
                                  "| 1 | `ru` | `getIsUserNew` | integer | integer | usage | tracker `ru` |\n"
                                  "| 2 | `ru_n` | `\"\"` | constant | constant | none | |\n"));
}

TEST(ContractCommandTest, MarkdownSaysWhatIsPersonalAndWhereElseItIsSent) {
  const std::string page = run({"contract", "--format", "markdown"}).out;

  for (const char* const row : {
           "| 4 | `device_id` | `device_id` | text | as is | identifier | in-app `device_id`, `os_id`; tracker "
           "`device_id` encoded |\n",
           "| 22 | `os_id` | `device_id` | text | as is | identifier | ad `device_id`; in-app `device_id`; tracker "
           "`device_id` encoded |\n",
           "| 14 | `email_address` | `email_address` | text | encoded | contact | |\n",
           "| 38 | `lat` | `getLatitude` | text | encoded | position | |\n",
           "| 21 | `sheight` | `screen_height` | text | as is | device | ad `screen_height`; in-app `sheight` |\n",
           "| 24 | `sessionId` | `iosID` | text | as is | identifier | ad `sessionId` encoded |\n",
           "| position | where the device is | `lat`, `long`, `address` |\n",
       }) {
    EXPECT_THAT(page, testing::HasSubstr(row));
  }
}

TEST(ContractCommandTest, DocumentationIsWhatTheProgramPrints) {
  const std::string page = tavlo::test::readFile(std::string(TAVLO_SOURCE_DIR) + "/docs/wire-contract.md");

  EXPECT_EQ(run({"contract", "--format", "markdown"}), (Result{0, page, ""}))
      << "renew it: tavlo contract --format markdown > docs/wire-contract.md";
}

}  // namespace
}  // namespace tavlo::cli::test
