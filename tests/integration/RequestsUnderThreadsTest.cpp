#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "TavloUtility.h"
#include "tests/integration/RealContainer.h"

namespace tavlo {
namespace {

// A value that shows when it is torn: one letter, all over, longer than any small-text buffer.
std::string whole(int number) { return std::string(40 + number % 24, static_cast<char>('a' + number % 26)); }

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
}

void expectWholeValues(const std::string& query, std::size_t pairs) {
  const auto values = valuesOf(query);
  EXPECT_EQ(values.size(), pairs);
  for (const std::string_view value : values) {
    EXPECT_TRUE(value == "4.1.0" || value == "0" || value == "1" || isWhole(value)) << value;
  }
}

TEST(RequestsUnderThreads, ReadersAndWritersOfOneRecordAndOneStoreMeetNoTornValue) {
  test::RealContainer container;
  writeValues(container.host().session(), 0);
  TavloUtility::setAppIdToUserDefault(whole(0));
  TavloUtility::setOptionalIdToUserDefault(whole(0));
  container.host().tracker().addEvent("n", "e");
  container.host().tracker().addEvent("n", "f");

  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 64; ++t) {
      threads.emplace_back([&container, t] {
        for (int i = 0; i < 20; ++i) {
          switch (t % 4) {
            case 0: writeValues(container.host().session(), t + i); break;
            case 1: expectWholeValues(TavloUtility::getAdditionalRequestingString(), 41); break;
            case 2: expectWholeValues(TavloUtility::getInAppNotificationAdditionalRequest(), 24); break;
            default: EXPECT_EQ(TavloUtility::trackerNetworkSessionData().ifMap()->size(), 35U); break;
          }
        }
        if (t % 8 == 0) TavloUtility::setAppIdToUserDefault(whole(t));
        if (t % 8 == 4) TavloUtility::setOptionalIdToUserDefault(whole(t));
        if (t == 5) container.host().counters().recordUse();
        if (t == 6) container.host().tracker().addEvent("n", "e");
      });
    }
  }

  container.restart();
  EXPECT_TRUE(isWhole(TavloUtility::getAppIdFromUserDefault().value()));
  EXPECT_TRUE(isWhole(TavloUtility::getOptionalIdFromUserDefault().value()));
  EXPECT_THAT(TavloUtility::getUserInfoRequestString(), testing::StartsWith("&ru=1&"));
}

}  // namespace
}  // namespace tavlo
