#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo {
namespace {

using test::FixedDataBase;
using test::Installed;
using test::InstalledPlatform;
using test::RecordingPackage;
using test::RecordingPlatform;
using test::RecordingUsers;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kEventCounts = "network_event_count";

ValueMap eventCount(Value networkID, Value event, Value count) {
  return {{"network_id", std::move(networkID)}, {"event", std::move(event)}, {"count", std::move(count)}};
}

class TrackerPayload : public testing::Test {
 protected:
  static Value payload() { return TavloUtility::trackerNetworkSessionData(); }
  static Value eventCounts() { return *payload().ifMap()->find(kEventCounts); }

  InstalledPlatform<RecordingPlatform> platform_;
  Installed<TavloPackage, RecordingPackage> package_;
  Installed<TavloUniqueUserHandler, RecordingUsers> users_;
  Installed<DataBaseHandler, FixedDataBase> database_;
};

TEST_F(TrackerPayload, HasExactlyThe35EntriesWithEverythingAbsent) {
  EXPECT_EQ(payload(), Value::map({{"Key", "(null)"},
                                   {"resolution", "0"},
                                   {"preroll", "0"},
                                   {"offerids", "0"},
                                   {"appId", "(null)"},
                                   {"os_version", "(null)"},
                                   {"app_version", "(null)"},
                                   {"device_id", "(null)"},
                                   {"Page", "(null)"},
                                   {"token", "(null)"},
                                   {"timestamp", "(null)"},
                                   {"app_bundle_name", "(null)"},
                                   {"sdk_version", "4.1.0"},
                                   {"advertisingID", "(null)"},
                                   {"limitedTracking", "0"},
                                   {"device_type", "(null)"},
                                   {"connection_type", "(null)"},
                                   {"screen_density_x", "(null)"},
                                   {"screen_density_y", "(null)"},
                                   {"swidth", "720"},
                                   {"sheight", "(null)"},
                                   {"screen_density_category", "(null)"},
                                   {"carrier_name", "(null)"},
                                   {"device_model", "(null)"},
                                   {"language", "(null)"},
                                   {"ru", "0"},
                                   {"uud", "0"},
                                   {"uud_n", "(null)"},
                                   {"uuw", "0"},
                                   {"uuw_n", "0"},
                                   {"uum", "0"},
                                   {"uum_n", "0"},
                                   {"user_id", "1234"},
                                   {"track_id", "2423432432"},
                                   {"network_event_count", Value::list({})}}));
  EXPECT_EQ(payload().ifMap()->size(), 35U);
}

TEST_F(TrackerPayload, IsTheSameWithNothingInstalled) {
  const Value withAbsentValues = payload();
  TavloPackage::install(nullptr);
  TavloUniqueUserHandler::install(nullptr);
  DataBaseHandler::install(nullptr);
  platform::install(nullptr);

  EXPECT_EQ(payload(), withAbsentValues);
}

TEST_F(TrackerPayload, SendsEachValueUnderItsKeyEncodedOrAsIs) {
  package_->fillWithNames();
  package_->limitedTracking = true;
  package_->resolutionValue = -5;
  package_->preRollValue = 2;
  users_->isNew = 1;
  users_->dayValue = 2;
  users_->day = "3 &";
  users_->weekValue = 4;
  users_->week = 5;
  users_->monthValue = 6;
  users_->month = -7;

  EXPECT_EQ(payload(), Value::map({{"Key", " accesskey"},
                                   {"resolution", "-5"},
                                   {"preroll", "2"},
                                   {"offerids", "0"},
                                   {"appId", "%20applicationId"},
                                   {"os_version", "%20os_version"},
                                   {"app_version", "%20app_version"},
                                   {"device_id", "%20device_id"},
                                   {"Page", "%20page"},
                                   {"token", "%20token"},
                                   {"timestamp", "%20timestamp"},
                                   {"app_bundle_name", "%20app_bundle_name"},
                                   {"sdk_version", "4.1.0"},
                                   {"advertisingID", "%20advertisingID"},
                                   {"limitedTracking", "1"},
                                   {"device_type", "%20device_type"},
                                   {"connection_type", "%20connection_type"},
                                   {"screen_density_x", "%20screen_density_x"},
                                   {"screen_density_y", "%20screen_density_y"},
                                   {"swidth", "720"},
                                   {"sheight", " screen_height"},
                                   {"screen_density_category", "%20screen_density_category"},
                                   {"carrier_name", "%20carrier_name"},
                                   {"device_model", "%20device_model"},
                                   {"language", "%20language"},
                                   {"ru", "1"},
                                   {"uud", "2"},
                                   {"uud_n", "3 &"},
                                   {"uuw", "4"},
                                   {"uuw_n", "5"},
                                   {"uum", "6"},
                                   {"uum_n", "-7"},
                                   {"user_id", "1234"},
                                   {"track_id", "2423432432"},
                                   {"network_event_count", Value::list({})}}));
}

TEST_F(TrackerPayload, ReadsEachSourceOnceInOrder) {
  static_cast<void>(payload());

  EXPECT_THAT(package_->reads, ElementsAre("accesskey", "resolution", "preRoll", "applicationId", "os_version",
                                           "app_version", "device_id", "page", "token", "timestamp", "app_bundle_name",
                                           "advertisingID", "limitAdTrackingEnabled", "device_type", "connection_type",
                                           "screen_density_x", "screen_density_y", "screen_height",
                                           "screen_density_category", "carrier_name", "device_model", "language"));
  EXPECT_THAT(users_->reads,
              ElementsAre("getIsUserNew", "getUniqueUserDayValue", "getUniqueUserDay", "getUniqueUserWeekValue",
                          "getNumberOfWeek", "getUniqueUserMonthValue", "getNumberOfMonth"));
  EXPECT_EQ(database_->asked, 1);
}

TEST_F(TrackerPayload, KeepsItsEntriesInTheOrderOfTheContract) {
  const Value map = payload();
  std::vector<std::string> keys;
  for (const auto& [key, value] : *map.ifMap()) keys.emplace_back(*key.ifText());

  EXPECT_THAT(keys, ElementsAre("Key", "resolution", "preroll", "offerids", "appId", "os_version", "app_version",
                                "device_id", "Page", "token", "timestamp", "app_bundle_name", "sdk_version",
                                "advertisingID", "limitedTracking", "device_type", "connection_type",
                                "screen_density_x", "screen_density_y", "swidth", "sheight", "screen_density_category",
                                "carrier_name", "device_model", "language", "ru", "uud", "uud_n", "uuw", "uuw_n", "uum",
                                "uum_n", "user_id", "track_id", "network_event_count"));
}

TEST_F(TrackerPayload, ReadsThePackageThenTheCountersThenTheRecords) {
  std::vector<std::string> turns;
  const auto turn = [&](const char* source) {
    if (turns.empty() || turns.back() != source) turns.emplace_back(source);
  };
  package_->onRead = [&](std::string_view) { turn("package"); };
  users_->onRead = [&] { turn("counters"); };
  database_->onAsked = [&] { turn("records"); };

  static_cast<void>(payload());

  EXPECT_THAT(turns, ElementsAre("package", "counters", "records"));
}

TEST_F(TrackerPayload, TakesThePackageOnceAndKeepsToIt) {
  package_->texts[PackageText::language] = "first";
  package_->onRead = [](std::string_view) { TavloPackage::install(nullptr); };

  EXPECT_EQ(*payload().ifMap()->find("language"), Value("first"));
}

TEST_F(TrackerPayload, AWriterBetweenTwoReadsLandsBetweenTwoEntries) {
  package_->texts[PackageText::accesskey] = "old";
  package_->texts[PackageText::language] = "old";
  package_->onRead = [this](std::string_view read) {
    if (read != "page") return;
    package_->texts[PackageText::accesskey] = "new";
    package_->texts[PackageText::language] = "new";
  };

  const Value map = payload();

  EXPECT_EQ(*map.ifMap()->find("Key"), Value("old"));
  EXPECT_EQ(*map.ifMap()->find("language"), Value("new"));
}

TEST_F(TrackerPayload, ListIsEmptyForNoRecordsAndForAnAbsentList) {
  EXPECT_EQ(eventCounts(), Value::list({}));
  database_->records.emplace();
  EXPECT_EQ(eventCounts(), Value::list({}));
  EXPECT_THAT(platform_->calls(), IsEmpty());
}

TEST_F(TrackerPayload, ALoneRecordIsNeitherReadNorLoggedNorSent) {
  const auto lone = database_->add("7", "impression", 5);

  EXPECT_EQ(eventCounts(), Value::list({}));
  EXPECT_THAT(lone->reads, IsEmpty());
  EXPECT_THAT(platform_->calls(), IsEmpty());
}

TEST_F(TrackerPayload, OfTwoRecordsBothAreLoggedAndThePositiveOneIsKept) {
  database_->add("7", "impression", "3");
  database_->add("8", "click", 0);

  EXPECT_EQ(eventCounts(), Value::list({Value::map(eventCount("7", "impression", "3"))}));
  EXPECT_THAT(platform_->calls(), ElementsAre("console:7  impression  3", "console:8  click  0"));
}

TEST_F(TrackerPayload, AKeptRecordIsReadTwoTwoAndThreeTimesADroppedOneLess) {
  const auto kept = database_->add("7", "impression", 3);
  const auto dropped = database_->add("8", "click", "abc");

  static_cast<void>(payload());

  EXPECT_THAT(kept->reads, ElementsAre("networkID", "event", "count", "count", "networkID", "event", "count"));
  EXPECT_THAT(dropped->reads, ElementsAre("networkID", "event", "count", "count"));
}

TEST_F(TrackerPayload, RecordsWhoseCountDoesNotReadAsPositiveAreLoggedAndDropped) {
  for (const auto& count : std::vector<std::optional<Value>>{"-2", "abc", "", 0, -1, 0.9, false, 4294967296LL,
                                                             Value::list({1}), std::nullopt}) {
    database_->add("n", "e", count);
  }

  EXPECT_EQ(eventCounts(), Value::list({}));
  EXPECT_THAT(platform_->consoleLines(),
              ElementsAre("n  e  -2", "n  e  abc", "n  e  ", "n  e  0", "n  e  -1", "n  e  0.9", "n  e  0",
                          "n  e  4294967296", "n  e  (1)", "n  e  (null)"));
}

TEST_F(TrackerPayload, KeptRecordsStayInOrderWithTheirValuesUnchanged) {
  database_->add(7, 1.5, " 3 of them");
  database_->add("7", true, 2.9);
  database_->add(18446744073709551615ULL, 0.1, true);
  database_->add("a b", "\xC3\xBC&", 4294967297LL);

  EXPECT_EQ(eventCounts(),
            Value::list({Value::map(eventCount(7, 1.5, " 3 of them")), Value::map(eventCount("7", true, 2.9)),
                         Value::map(eventCount(18446744073709551615ULL, 0.1, true)),
                         Value::map(eventCount("a b", "\xC3\xBC&", 4294967297LL))}));
  EXPECT_THAT(platform_->consoleLines(), ElementsAre("7  1.5   3 of them", "7  1  2.9", "18446744073709551615  0.1  1",
                                                     "a b  \xC3\xBC&  4294967297"));
}

TEST_F(TrackerPayload, AnAbsentIdOrEventLeavesItsKeyOut) {
  database_->add("7", std::nullopt, 7);
  database_->add(std::nullopt, "click", 1);
  database_->add(std::nullopt, std::nullopt, 2);

  EXPECT_EQ(eventCounts(), Value::list({Value::map({{"network_id", "7"}, {"count", 7}}),
                                        Value::map({{"event", "click"}, {"count", 1}}), Value::map({{"count", 2}})}));
  EXPECT_THAT(platform_->consoleLines(), ElementsAre("7  (null)  7", "(null)  click  1", "(null)  (null)  2"));
}

TEST_F(TrackerPayload, ARecordThatIsMissingFromItsListReadsAsAbsent) {
  database_->add("7", "impression", 1);
  database_->records->push_back(nullptr);

  EXPECT_EQ(eventCounts(), Value::list({Value::map(eventCount("7", "impression", 1))}));
  EXPECT_THAT(platform_->consoleLines(), ElementsAre("7  impression  1", "(null)  (null)  (null)"));
}

TEST_F(TrackerPayload, ACountThatChangesBetweenTestAndUseIsSentAsItIsThen) {
  class Counting final : public NetworkTrackerDetail {
   public:
    std::optional<Value> networkID() const override { return "7"; }
    std::optional<Value> event() const override { return "e"; }
    std::optional<Value> count() const override { return ++reads_; }

   private:
    mutable int reads_ = 0;
  };
  database_->records.emplace();
  database_->records->push_back(std::make_shared<Counting>());
  database_->records->push_back(std::make_shared<Counting>());

  EXPECT_EQ(eventCounts(), Value::list({Value::map(eventCount("7", "e", 3)), Value::map(eventCount("7", "e", 3))}));
  EXPECT_THAT(platform_->consoleLines(), ElementsAre("7  e  1", "7  e  1"));
}

}  // namespace
}  // namespace tavlo
