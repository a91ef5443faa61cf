#include <algorithm>
#include <atomic>
#include <barrier>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "host/SessionRecord.h"

namespace tavlo::host {
namespace {

using testing::Optional;

TEST(SessionRecord, EachOperationReadsTheTextOfItsName) {
  SessionRecord record;
  const TavloPackage& package = record;

  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) {
    record.set(static_cast<PackageText>(i), "the " + std::string(kPackageTextReads[i].name));
  }

  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) {
    const auto& [name, read] = kPackageTextReads[i];
    EXPECT_THAT((package.*read)(), Optional("the " + std::string(name)));
    EXPECT_THAT(record.get(static_cast<PackageText>(i)), Optional("the " + std::string(name)));
  }
}

TEST(SessionRecord, NothingIsThereUntilItIsSet) {
  const SessionRecord record;

  for (const auto& [name, read] : kPackageTextReads) EXPECT_EQ((record.*read)(), std::nullopt) << name;
  EXPECT_FALSE(record.limitAdTrackingEnabled());
  EXPECT_EQ(record.resolution(), 0);
  EXPECT_EQ(record.preRoll(), 0);
}

TEST(SessionRecord, EmptyAndAbsentStayDifferent) {
  SessionRecord record;

  record.set(PackageText::name, "");
  record.set(PackageText::age, "31");
  record.set(PackageText::age, std::nullopt);

  EXPECT_THAT(record.name(), Optional(std::string()));
  EXPECT_EQ(record.age(), std::nullopt);
}

TEST(SessionRecord, NumbersAndTheTruthValueComeBackAsTheyWereSet) {
  SessionRecord record;

  record.setResolution(std::numeric_limits<std::int32_t>::min());
  record.setPreRoll(2);
  record.setLimitAdTrackingEnabled(true);

  EXPECT_EQ(record.resolution(), -2147483647 - 1);
  EXPECT_EQ(record.preRoll(), 2);
  EXPECT_TRUE(record.limitAdTrackingEnabled());
}

TEST(SessionRecord, CoordinatesAreKeptAsTheyCome) {
  SessionRecord record;

  record.setLatitudeAndLogitude("52.520008", " 13,4 ");
  EXPECT_THAT(record.getLatitude(), Optional(std::string("52.520008")));
  EXPECT_THAT(record.getLongitude(), Optional(std::string(" 13,4 ")));

  record.setLatitudeAndLogitude(std::nullopt, "");
  EXPECT_EQ(record.getLatitude(), std::nullopt);
  EXPECT_THAT(record.getLongitude(), Optional(std::string()));
}

TEST(SessionRecord, AnEmptyAddressIsNotAnAbsentOne) {
  SessionRecord record;

  record.setUserAddress("");
  EXPECT_THAT(record.getUserAddress(), Optional(std::string()));

  record.setUserAddress(std::nullopt);
  EXPECT_EQ(record.getUserAddress(), std::nullopt);
}

TEST(SessionRecord, WhatOneCallerOfTheSharedInstanceWritesAnotherReads) {
  TavloPackage::install(std::make_shared<SessionRecord>());

  TavloPackage::sharedInstance()->setUserAddress("Example Street 1");

  EXPECT_THAT(TavloPackage::sharedInstance()->getUserAddress(), Optional(std::string("Example Street 1")));
  TavloPackage::install(nullptr);
}

// A text that shows by itself whether it is whole: one letter, as often as the letter says.
std::string wholeText(unsigned seed) {
  const unsigned letter = seed % 26;
  return std::string(static_cast<std::size_t>(letter) * 9 + 1, static_cast<char>('a' + letter));
}

bool isWhole(const Text& text) {
  return !text || (!text->empty() && *text == wholeText(static_cast<unsigned>(text->front() - 'a')));
}

void writeSome(SessionRecord& record, unsigned seed) {
  const auto text = static_cast<PackageText>(seed % kPackageTextReads.size());
  record.set(text, seed % 7 == 0 ? Text() : wholeText(seed));
  record.setLatitudeAndLogitude(wholeText(seed), wholeText(seed + 1));
  record.setUserAddress(wholeText(seed + 2));
  record.setResolution(seed % 2 == 0 ? 0x11111111 : 0x22222222);
  record.setPreRoll(static_cast<std::int32_t>(seed % 3));
  record.setLimitAdTrackingEnabled(seed % 2 == 0);
}

bool allIsWhole(const SessionRecord& record) {
  const std::int32_t resolution = record.resolution();
  const std::int32_t preRoll = record.preRoll();
  static_cast<void>(record.limitAdTrackingEnabled());
  return std::all_of(kPackageTextReads.begin(), kPackageTextReads.end(),
                     [&](const PackageTextRead& row) { return isWhole((record.*row.read)()); }) &&
         (resolution == 0 || resolution == 0x11111111 || resolution == 0x22222222) && preRoll >= 0 && preRoll <= 2;
}

TEST(SessionRecord, ThreadsReadWholeValuesWhileOthersWrite) {
  constexpr unsigned kThreads = 64;
  constexpr unsigned kRounds = 200;
  SessionRecord record;
  std::atomic<int> torn = 0;
  std::barrier start(kThreads);
  std::vector<std::jthread> threads;

  for (unsigned thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      for (unsigned round = 0; round < kRounds; ++round) {
        writeSome(record, thread * kRounds + round);
        if (!allIsWhole(record)) ++torn;
      }
    });
  }
  threads.clear();

  EXPECT_EQ(torn, 0);
}

}  // namespace
}  // namespace tavlo::host
