#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "common/Format.h"
#include "host/UniqueUserCounters.h"
#include "tests/host/Times.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::at;
using testing::ElementsAre;

// The seven reads in the order in which they are sent.
std::string readingsOf(const TavloUniqueUserHandler& counters) {
  return std::to_string(counters.isUserNew()) + "," + std::to_string(counters.uniqueUserDayValue()) + "," +
         counters.uniqueUserDay().value_or(std::string(kAbsent)) + "," +
         std::to_string(counters.uniqueUserWeekValue()) + "," + std::to_string(counters.numberOfWeek()) + "," +
         std::to_string(counters.uniqueUserMonthValue()) + "," + std::to_string(counters.numberOfMonth());
}

class UniqueUserCountersTest : public testing::Test {
 protected:
  std::string use(std::chrono::system_clock::time_point moment) {
    clock.now = moment;
    counters.recordUse();
    return readingsOf(counters);
  }

  const test::TemporaryFolder folder;
  const fs::path file = folder / "tracker.sqlite";
  const std::shared_ptr<Database> database = std::make_shared<Database>(file, DatabaseOptions{.busyTimeout = 1ms});
  test::ManualClock clock;
  UniqueUserCounters counters{database, clock.clock()};
};

TEST_F(UniqueUserCountersTest, NothingIsCountedBeforeTheFirstUse) {
  EXPECT_EQ(readingsOf(counters), "0,0,(null),0,0,0,0");
  EXPECT_EQ(counters.uniqueUserDay(), std::nullopt);
}

struct Step {
  int year;
  unsigned month;
  unsigned day;
  const char* readings;  // is new, day value, day, week value, week, month value, month
};

struct Story {
  const char* name;
  std::vector<Step> steps;
};

class UniqueUserCountersStory : public UniqueUserCountersTest, public testing::WithParamInterface<Story> {};

TEST_P(UniqueUserCountersStory, GoesAsExpected) {
  for (const auto& [year, month, day, readings] : GetParam().steps) {
    EXPECT_EQ(use(at(year, month, day)), readings) << year << '-' << month << '-' << day;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, UniqueUserCountersStory,
    testing::Values(
        Story{"OneDay", {{2026, 11, 16, "1,1,320,1,47,1,11"}, {2026, 11, 16, "0,0,320,0,47,0,11"}}},
        Story{"OneWeek",
              {{2026, 11, 16, "1,1,320,1,47,1,11"},
               {2026, 11, 22, "0,1,326,0,47,0,11"},
               {2026, 11, 23, "0,1,327,1,48,0,11"}}},
        Story{"WeekAcrossMonths", {{2026, 9, 30, "1,1,273,1,40,1,9"}, {2026, 10, 1, "0,1,274,0,40,1,10"}}},
        Story{"WeekAcrossYears",
              {{2020, 12, 31, "1,1,366,1,53,1,12"},
               {2021, 1, 1, "0,1,1,0,53,1,1"},
               {2021, 1, 3, "0,1,3,0,53,0,1"},
               {2021, 1, 4, "0,1,4,1,1,0,1"}}},
        Story{"FirstWeekBeginsInTheOldYear",
              {{2024, 12, 29, "1,1,364,1,52,1,12"},
               {2024, 12, 30, "0,1,365,1,1,0,12"},
               {2024, 12, 31, "0,1,366,0,1,0,12"},
               {2025, 1, 1, "0,1,1,0,1,1,1"}}},
        Story{"CommonYearWithALongLastWeek", {{2026, 12, 31, "1,1,365,1,53,1,12"}, {2027, 1, 1, "0,1,1,0,53,1,1"}}},
        Story{"SaturdayNewYear", {{2022, 1, 1, "1,1,1,1,52,1,1"}, {2022, 1, 3, "0,1,3,1,1,0,1"}}},
        Story{"LeapDay", {{2024, 2, 29, "1,1,60,1,9,1,2"}, {2024, 3, 1, "0,1,61,0,9,1,3"}}},
        Story{"SameDayOfAnotherYear", {{2025, 11, 16, "1,1,320,1,46,1,11"}, {2026, 11, 16, "0,1,320,1,47,1,11"}}},
        Story{"SameWeekNumberOfAnotherYear",
              {{2025, 11, 10, "1,1,314,1,46,1,11"}, {2026, 11, 15, "0,1,319,1,46,1,11"}}},
        Story{"ClockGoingBack",
              {{2026, 11, 17, "1,1,321,1,47,1,11"},
               {2026, 11, 16, "0,1,320,0,47,0,11"},
               {2026, 11, 17, "0,0,321,0,47,0,11"},
               {2026, 10, 31, "0,1,304,1,44,1,10"},
               {2026, 11, 16, "0,0,320,0,47,0,11"}}},
        Story{"ClockGoingBackOverEdges",
              {{2026, 12, 1, "1,1,335,1,49,1,12"},
               {2026, 11, 30, "0,1,334,0,49,1,11"},
               {2026, 11, 29, "0,1,333,1,48,0,11"}}},
        Story{
            "ClockFarAheadOnce",
            {{2099, 1, 1, "1,1,1,1,1,1,1"}, {2026, 11, 16, "0,1,320,1,47,1,11"}, {2026, 11, 17, "0,1,321,0,47,0,11"}}},
        Story{"AroundTheEpoch", {{1969, 12, 31, "1,1,365,1,1,1,12"}, {1970, 1, 1, "0,1,1,0,1,1,1"}}}),
    [](const auto& row) { return row.param.name; });

TEST_F(UniqueUserCountersTest, ADayEndsAtMidnight) {
  EXPECT_EQ(use(at(2026, 11, 16, 24h - 1ms)), "1,1,320,1,47,1,11");
  EXPECT_EQ(use(at(2026, 11, 16, 24h)), "0,1,321,0,47,0,11");
  EXPECT_EQ(use(at(1969, 12, 31, 24h - 1ms)), "0,1,365,1,1,1,12");
}

TEST_F(UniqueUserCountersTest, ReadsChangeNothingAndAskNoClock) {
  use(at(2026, 11, 16));
  clock.now = at(2026, 12, 24);
  const auto daysBefore = database->run("SELECT * FROM used_day");
  const auto lastBefore = database->run("SELECT * FROM last_use");

  for (int i = 0; i < 3; ++i) EXPECT_EQ(readingsOf(counters), "1,1,320,1,47,1,11");

  EXPECT_EQ(clock.calls, 1);
  EXPECT_EQ(database->run("SELECT * FROM used_day"), daysBefore);
  EXPECT_EQ(database->run("SELECT * FROM last_use"), lastBefore);
}

TEST_F(UniqueUserCountersTest, TheLastUseIsThereAfterReopening) {
  use(at(2026, 11, 16));
  use(at(2026, 11, 23));

  clock.now = at(2027, 5, 5);
  UniqueUserCounters reopened(std::make_shared<Database>(file), clock.clock());
  EXPECT_EQ(readingsOf(reopened), "0,1,327,1,48,0,11");

  clock.now = at(2026, 11, 16);
  reopened.recordUse();
  EXPECT_EQ(readingsOf(reopened), "0,0,320,0,47,0,11");
}

TEST_F(UniqueUserCountersTest, UsesOfOtherProcessesCount) {
  UniqueUserCounters other(std::make_shared<Database>(file), clock.clock());

  EXPECT_EQ(use(at(2026, 11, 16)), "1,1,320,1,47,1,11");
  EXPECT_EQ(readingsOf(other), "0,0,(null),0,0,0,0");
  other.recordUse();

  EXPECT_EQ(readingsOf(other), "0,0,320,0,47,0,11");
  EXPECT_EQ(readingsOf(counters), "1,1,320,1,47,1,11");
}

TEST_F(UniqueUserCountersTest, AUseThatCannotBeStoredChangesNothing) {
  use(at(2026, 11, 16));
  Database holder(file);
  holder.run("BEGIN IMMEDIATE");

  EXPECT_THROW(use(at(2026, 11, 17)), DatabaseError);
  EXPECT_EQ(readingsOf(counters), "1,1,320,1,47,1,11");
  holder.run("ROLLBACK");

  EXPECT_EQ(use(at(2026, 11, 17)), "0,1,321,0,47,0,11");
}

TEST_F(UniqueUserCountersTest, TheComponentReadsTheInstalledCounters) {
  TavloUniqueUserHandler::install(std::make_shared<UniqueUserCounters>(database, clock.clock()));
  clock.now = at(2026, 11, 16);

  std::static_pointer_cast<UniqueUserCounters>(TavloUniqueUserHandler::installed())->recordUse();

  EXPECT_EQ(TavloUniqueUserHandler::getIsUserNew(), 1);
  EXPECT_EQ(TavloUniqueUserHandler::getUniqueUserDayValue(), 1);
  EXPECT_THAT(TavloUniqueUserHandler::getUniqueUserDay(), testing::Optional(std::string("320")));
  EXPECT_EQ(TavloUniqueUserHandler::getUniqueUserWeekValue(), 1);
  EXPECT_EQ(TavloUniqueUserHandler::getNumberOfWeek(), 47);
  EXPECT_EQ(TavloUniqueUserHandler::getUniqueUserMonthValue(), 1);
  EXPECT_EQ(TavloUniqueUserHandler::getNumberOfMonth(), 11);
  TavloUniqueUserHandler::install(nullptr);
}

TEST_F(UniqueUserCountersTest, OneOfManyThreadsIsTheFirstUse) {
  constexpr int kThreads = 8;
  clock.now = at(2026, 11, 16);
  std::atomic<int> newUsers = 0;
  std::vector<std::jthread> threads;

  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&] {
      UniqueUserCounters own(std::make_shared<Database>(file, DatabaseOptions{.busyTimeout = 60s}), clock.clock());
      own.recordUse();
      newUsers += own.isUserNew();
    });
  }
  threads.clear();

  EXPECT_EQ(newUsers, 1);
  EXPECT_THAT(database->run("SELECT count(*) FROM used_day"), ElementsAre(ElementsAre(Value(1))));
}

TEST_F(UniqueUserCountersTest, ThreadsReadWhatOthersRecorded) {
  std::vector<std::jthread> threads;

  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int i = 0; i < 10; ++i) {
        clock.now = at(2026, 11, 16 + static_cast<unsigned>(i % 2));
        counters.recordUse();
      }
    });
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        EXPECT_THAT(counters.uniqueUserDay().value_or("320"), testing::AnyOf("320", "321"));
        EXPECT_THAT(counters.numberOfWeek(), testing::AnyOf(0, 47));
      }
    });
  }
  threads.clear();

  EXPECT_EQ(counters.isUserNew(), 0);
  const auto last = database->run("SELECT day - 20453 FROM last_use");  // days since 2025-12-31
  EXPECT_EQ(counters.uniqueUserDay(), textForm(last.at(0).at(0)));
}

}  // namespace
}  // namespace tavlo::host
