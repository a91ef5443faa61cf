#include <gtest/gtest.h>

#include "cli/SessionFile.h"
#include "request/PackageReads.h"

namespace tavlo::cli {
namespace {

Session parse(std::string_view document) { return parseSession(document, "s.json"); }

TEST(SessionFileTest, EveryTextOfThePackageIsTakenUnderItsOperationsName) {
  for (const PackageTextRead& read : kPackageTextReads) {
    const std::string name(read.name);

    const Session session =
        parse(R"({"package": {")" + std::string(name).append(R"(": "value of )").append(name).append("\"}}"));

    for (const PackageTextRead& other : kPackageTextReads) {
      EXPECT_EQ(((*session.package).*other.read)(), other.name == name ? Text("value of " + name) : std::nullopt);
    }
  }
}

TEST(SessionFileTest, NumbersAndTheTruthValueOfThePackageAreTaken) {
  const Session session =
      parse(R"({"package": {"limitAdTrackingEnabled": true, "resolution": -2147483648, "preRoll": 2147483647}})");

  EXPECT_TRUE(session.package->limitAdTrackingEnabled());
  EXPECT_EQ(session.package->resolution(), -2147483647 - 1);
  EXPECT_EQ(session.package->preRoll(), 2147483647);
}

TEST(SessionFileTest, NullIsAsGoodAsMissing) {
  for (const char* document :
       {"{}", R"({"package": null, "uniqueUser": null, "trackerRecords": null, "identifiers": null, "about": null})",
        R"({"package": {"token": null, "limitAdTrackingEnabled": null, "resolution": null, "preRoll": null},
            "uniqueUser": {"getIsUserNew": null, "getUniqueUserDay": null},
            "identifiers": {"ApplicationId": null, "OptionalId": null, "SecurityKey": null}})"}) {
    const Session session = parse(document);

    EXPECT_EQ(session.package->token(), std::nullopt);
    EXPECT_FALSE(session.package->limitAdTrackingEnabled());
    EXPECT_EQ(session.package->resolution(), 0);
    EXPECT_EQ(session.package->preRoll(), 0);
    EXPECT_EQ(session.counters.isUserNew, 0);
    EXPECT_EQ(session.counters.day, std::nullopt);
    EXPECT_EQ(session.trackerRecords, std::nullopt);
    EXPECT_TRUE(session.identifiers.empty());
  }
}

TEST(SessionFileTest, EachCounterIsTakenUnderItsOperationsName) {
  const UserCounters counters = parse(R"({"uniqueUser": {
      "getIsUserNew": 1, "getUniqueUserDayValue": 2, "getUniqueUserDay": "3", "getUniqueUserWeekValue": 4,
      "getNumberOfWeek": 5, "getUniqueUserMonthValue": 6, "getNumberOfMonth": 7}})")
                                    .counters;

  EXPECT_EQ(counters.isUserNew, 1);
  EXPECT_EQ(counters.dayValue, 2);
  EXPECT_EQ(counters.day, "3");
  EXPECT_EQ(counters.weekValue, 4);
  EXPECT_EQ(counters.week, 5);
  EXPECT_EQ(counters.monthValue, 6);
  EXPECT_EQ(counters.month, 7);
}

TEST(SessionFileTest, RecordsKeepTheKindOfTheirValues) {
  const Session session = parse(R"({"trackerRecords": [
      {"networkID": "n", "event": 1, "count": 2.5}, {"networkID": null}, {"count": 18446744073709551616}]})");

  const std::vector<host::TrackerEvent> expected{{.networkID = "n", .event = 1, .count = 2.5},
                                                 {.networkID = {}, .event = {}, .count = {}},
                                                 {.networkID = {}, .event = {}, .count = Integer{.high = 1, .low = 0}}};
  EXPECT_EQ(session.trackerRecords, expected);
}

TEST(SessionFileTest, EmptyListIsNotAbsent) {
  EXPECT_EQ(parse(R"({"trackerRecords": []})").trackerRecords, std::vector<host::TrackerEvent>());
}

TEST(SessionFileTest, IdentifiersAreTakenAsTheyAre) {
  const std::map<std::string, std::string, std::less<>> expected{{"ApplicationId", ""}, {"SecurityKey", " k "}};

  EXPECT_EQ(parse(R"({"identifiers": {"ApplicationId": "", "SecurityKey": " k "}})").identifiers, expected);
}

TEST(SessionFileTest, AboutIsACommentOfAnyKind) {
  for (const char* about : {"null", "7", R"("text")", R"([1, {"a": 1, "a": 2}])"}) {
    EXPECT_TRUE(parse(std::string("{\"about\": ") + about + "}").identifiers.empty());
  }
}

TEST(SessionFileTest, TextsMayHoldAnything) {
  const Session session = parse(R"({"package": {"page": "a\u0000\ud83d\ude00\/ü"}})");

  EXPECT_EQ(session.package->page(), std::string("a\0😀/ü", 9));
}

}  // namespace
}  // namespace tavlo::cli
