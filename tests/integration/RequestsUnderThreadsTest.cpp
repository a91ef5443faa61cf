#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <thread>

#include "TavloUtility.h"
#include "tests/integration/RealContainer.h"

namespace tavlo {
namespace {

// A value that shows when it is torn: one letter, all over, longer than any small-text buffer.
std::string whole(int number) {
  return std::string(static_cast<std::size_t>(40 + number % 24), static_cast<char>('a' + number % 26));
}

bool isWhole(std::string_view value) {
  return !value.empty() && value == std::string(value.size(), value.front()) && value.size() >= 40 && value.size() < 64;
}

// The values of a query whose values hold neither "&" nor "=".
std::vector<std::string_view> valuesOf(std::string_view query) {
  std::vector<std::string_view> values;
  while (!query.empty()) {
    const std::string_view pair = query.substr(0, query.find('&'));
    values.push_back(pair.substr(std::min(pair.find('='), pair.size() - 1) + 1));
    query.remove_prefix(std::min(pair.size() + 1, query.size()));
  }
  return values;
}

void writeValues(host::SessionRecord& session, int number) {
  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) session.set(static_cast<PackageText>(i), whole(number));
  TavloPackage::sharedInstance()->setLatitudeAndLogitude(whole(number + 1), whole(number + 2));
  TavloPackage::sharedInstance()->setUserAddress(whole(number + 3));
  session.setLimitAdTrackingEnabled(number % 2 == 0);
  session.setResolution(number);
  session.setPreRoll(number);
}

void writeIdentifiers(int number) {
  TavloUtility::setAppIdToUserDefault(whole(number));
  TavloUtility::setOptionalIdToUserDefault(whole(number));
  TavloUtility::setSecurityKeyToUserDefault(whole(number));
}

void expectWholeIdentifiers() {
  EXPECT_TRUE(isWhole(TavloUtility::getAppIdFromUserDefault().value()));
  EXPECT_TRUE(isWhole(TavloUtility::getOptionalIdFromUserDefault().value()));
  EXPECT_TRUE(isWhole(TavloUtility::getSecurityKeyTFromUserDefault().value()));
}

void expectWholeValues(const std::string& query, std::size_t pairs) {
  const auto values = valuesOf(query);
  EXPECT_EQ(values.size(), pairs);
  for (const std::string_view value : values) {
    EXPECT_TRUE(value == "4.1.0" || value == "0" || value == "1" || isWhole(value)) << value;
  }
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

void expectWholePayload(const Value& payload) {
  EXPECT_EQ(payload.ifMap()->size(), 35U);
  for (const auto& [key, value] : *payload.ifMap()) {
    if (const auto text = value.ifText()) {
      EXPECT_TRUE(isNumber(*text) || *text == "4.1.0" || *text == "(null)" || isWhole(*text)) << *text;
    } else {
      EXPECT_EQ(value.ifList()->size(), 2U);
    }
  }
}

TEST(RequestsUnderThreads, ReadersAndWritersOfOneRecordAndOneStoreMeetNoTornValue) {
  constexpr int kThreads = 64;
  test::RealContainer container;
  writeValues(container.host().session(), 0);
  writeIdentifiers(0);
  container.host().tracker().addEvent("n", "e");
  container.host().tracker().addEvent("n", "f");

  {
    std::barrier start(kThreads);
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&container, &start, t] {
        start.arrive_and_wait();
        for (int i = 0; i < 16; ++i) {
          switch (t % 4) {
            case 0: writeValues(container.host().session(), t + i); break;
            case 1: expectWholeValues(TavloUtility::getAdditionalRequestingString(), 41); break;
            case 2: expectWholeValues(TavloUtility::getInAppNotificationAdditionalRequest(), 24); break;
            default: expectWholePayload(TavloUtility::trackerNetworkSessionData()); break;
          }
          if (i % 8 == t % 8) writeIdentifiers(t + i);
          if (i % 8 == t % 8 + 1) expectWholeIdentifiers();
          if (i == t % 8 && t % 16 == 3) container.host().counters().recordUse();
          if (i == t % 8 && t % 16 == 7) container.host().tracker().addEvent("n", "e");
        }
      });
    }
  }

  container.restart();
  expectWholeIdentifiers();
  EXPECT_THAT(TavloUtility::getUserInfoRequestString(), testing::StartsWith("&ru=0&"));
  EXPECT_EQ(container.host().tracker().list().front().count, Value(5));
}

}  // namespace
}  // namespace tavlo
