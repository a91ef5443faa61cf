#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "tests/integration/RealContainer.h"

namespace tavlo {
namespace {

using test::RealContainer;
using testing::EndsWith;
using testing::StartsWith;

TEST(RequestsEndToEnd, IdentifiersSurviveARestartAndReachTheInAppRequest) {
  RealContainer container;
  TavloUtility::setAppIdToUserDefault("app 1");
  TavloUtility::setOptionalIdToUserDefault("first");
  TavloUtility::setOptionalIdToUserDefault("J\xC3\xBCrgen");
  TavloUtility::setSecurityKeyToUserDefault(" ");

  container.restart();

  EXPECT_EQ(TavloUtility::getAppIdFromUserDefault(), "app 1");
  EXPECT_EQ(TavloUtility::getOptionalIdFromUserDefault(), "J\xC3\xBCrgen");
  EXPECT_EQ(TavloUtility::getSecurityKeyTFromUserDefault(), " ");
  EXPECT_THAT(TavloUtility::getInAppNotificationAdditionalRequest(), StartsWith("app_id=app%201&os_version=(null)&"));
  EXPECT_THAT(TavloUtility::getInAppNotificationAdditionalRequest(),
              EndsWith("&opt_userid=J%C3%BCrgen&os_id=(null)&Page=(null)&sessionId=(null)"));
}

TEST(RequestsEndToEnd, IdentifiersOfAnyBytesComeBackAfterARestart) {
  RealContainer container;
  for (const std::string& id : {std::string("a\0b", 3), std::string("\xFF\xFE"), std::string("\xED\xA0\x80"),
                                std::string("\xF0\x9F\x98\x80"), std::string(100000, 'x')}) {
    TavloUtility::setAppIdToUserDefault(id);

    container.restart();

    EXPECT_EQ(TavloUtility::getAppIdFromUserDefault(), id);
  }
}

TEST(RequestsEndToEnd, CountersSurviveARestart) {
  RealContainer container;
  container.host().counters().recordUse();

  container.restart();

  EXPECT_EQ(TavloUtility::getUserInfoRequestString(), "&ru=1&ru_n=&uud=1&uud_n=320&uuw=1&uuw_n=47&uum=1&uum_n=11");
}

TEST(RequestsEndToEnd, ASecondUseOfTheSameDayIsNoLongerUnique) {
  RealContainer container;
  container.host().counters().recordUse();
  container.host().counters().recordUse();

  EXPECT_EQ(TavloUtility::getUserInfoRequestString(), "&ru=0&ru_n=&uud=0&uud_n=320&uuw=0&uuw_n=47&uum=0&uum_n=11");
}

TEST(RequestsEndToEnd, BuildingRequestsLeavesCountersAndRecordsAsTheyAre) {
  RealContainer container;
  container.host().counters().recordUse();
  container.host().tracker().addEvent("7", "impression");
  const std::string users = TavloUtility::getUserInfoRequestString();
  const Value payload = TavloUtility::trackerNetworkSessionData();

  container.restart();

  EXPECT_EQ(TavloUtility::getUserInfoRequestString(), users);
  EXPECT_EQ(TavloUtility::trackerNetworkSessionData(), payload);
}

TEST(RequestsEndToEnd, StoredEventsReachThePayloadFromTheSecondPairOn) {
  RealContainer container;
  const auto eventCounts = [] {
    return *TavloUtility::trackerNetworkSessionData().ifMap()->find("network_event_count");
  };

  container.host().tracker().addEvent("7", "impression", 2);
  EXPECT_EQ(eventCounts(), Value::list({}));

  container.host().tracker().addEvent(8, "click");
  container.host().tracker().addEvent("7", "impression");
  EXPECT_EQ(eventCounts(), Value::list({Value::map({{"network_id", "7"}, {"event", "impression"}, {"count", 3}}),
                                        Value::map({{"network_id", 8}, {"event", "click"}, {"count", 1}})}));
}

}  // namespace
}  // namespace tavlo
