#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <csignal>
#include <iostream>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "common/Logger.h"
#include "host/TrackerDatabase.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

TrackerEvent event(Value networkID, Value name, std::int64_t count) {
  return {.networkID = std::move(networkID), .event = std::move(name), .count = count};
}

class LinesInMemory final : public Logger {
 public:
  void writeLine(std::string_view message) override { lines.emplace_back(message); }

  std::vector<std::string> lines;
};

class TrackerDatabaseTest : public testing::Test {
 protected:
  void SetUp() override { Logger::install(log); }
  void TearDown() override { Logger::install(nullptr); }

  const test::TemporaryFolder folder;
  const fs::path file = folder / "tracker.sqlite";
  const std::shared_ptr<Database> database = std::make_shared<Database>(file, DatabaseOptions{.busyTimeout = 1ms});
  const std::shared_ptr<LinesInMemory> log = std::make_shared<LinesInMemory>();
  TrackerDatabase tracker{database};
};

TEST_F(TrackerDatabaseTest, ThereIsNothingAtFirst) {
  EXPECT_THAT(tracker.list(), IsEmpty());
  EXPECT_THAT(tracker.getNetworkTrackerDetails(), testing::Optional(IsEmpty()));
}

TEST_F(TrackerDatabaseTest, CountsOfAPairAddUpAtThePlaceOfItsFirstAddition) {
  tracker.addEvent("network-7", "impression");
  tracker.addEvent("network-2", "click", 5);
  tracker.addEvent("network-7", "click", 2);
  tracker.addEvent("network-7", "impression", 9);

  EXPECT_THAT(tracker.list(), ElementsAre(event("network-7", "impression", 10), event("network-2", "click", 5),
                                          event("network-7", "click", 2)));
}

TEST_F(TrackerDatabaseTest, CountsStopAtTheLargestInteger) {
  tracker.addEvent("n", "e", kMost - 1);

  for (const std::int64_t more : {std::int64_t{1}, std::int64_t{1}, std::int64_t{2}, kMost}) {
    tracker.addEvent("n", "e", more);
    EXPECT_THAT(tracker.list(), ElementsAre(event("n", "e", kMost)));
  }
}

TEST_F(TrackerDatabaseTest, ValuesOfDifferentKindsAreDifferentAndKeepTheirKind) {
  const std::vector<Value> ids = {1, 1.0, "1", "", 0.1, -7, std::string("a\0b", 3), std::string("a\0c", 3), "\xff"};

  for (int round = 0; round < 2; ++round) {
    for (const Value& id : ids) tracker.addEvent(id, "e");
    for (const Value& id : ids) tracker.addEvent("n", id);
  }

  std::vector<TrackerEvent> expected;
  for (const Value& id : ids) expected.push_back(event(id, "e", 2));
  for (const Value& id : ids) expected.push_back(event("n", id, 2));
  EXPECT_EQ(tracker.list(), expected);
}

TEST_F(TrackerDatabaseTest, ANarrowRealIsKeptAsTheSameNumber) {
  tracker.addEvent(Real{.value = 0.5, .narrow = true}, "e");

  EXPECT_THAT(tracker.list(), ElementsAre(event(0.5, "e", 1)));
}

struct BadValue {
  const char* name;
  Value value;
};

class TrackerDatabaseRefuses : public TrackerDatabaseTest, public testing::WithParamInterface<BadValue> {};

std::string refusalOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "nothing was thrown";
}

TEST_P(TrackerDatabaseRefuses, ItAsAnIdAndAsAnEvent) {
  EXPECT_EQ(refusalOf([this] { tracker.addEvent(GetParam().value, "e"); }),
            "addEvent: the network id must be a text or a number of 64 bits");
  EXPECT_EQ(refusalOf([this] { tracker.addEvent("n", GetParam().value); }),
            "addEvent: the event must be a text or a number of 64 bits");
  EXPECT_THAT(tracker.list(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, TrackerDatabaseRefuses,
                         testing::Values(BadValue{"Null", Value()}, BadValue{"TruthValue", true},
                                         BadValue{"Date", Date{1}}, BadValue{"Data", Value::data("x")},
                                         BadValue{"List", Value::list({"x"})}, BadValue{"NoNumber", std::nan("")},
                                         BadValue{"WideInteger", std::uint64_t{1} << 63U}),
                         [](const auto& row) { return row.param.name; });

TEST_F(TrackerDatabaseTest, CountsBelowOneAreRefused) {
  EXPECT_EQ(refusalOf([this] { tracker.addEvent("n", "e", 0); }), "addEvent: the count must be 1 or more, not 0");
  EXPECT_EQ(refusalOf([this] { tracker.addEvent("n", "e", -3); }), "addEvent: the count must be 1 or more, not -3");
  EXPECT_THAT(tracker.list(), IsEmpty());
}

TEST_F(TrackerDatabaseTest, ClearingLeavesNothingAndStartsTheOrderAnew) {
  tracker.addEvent("b", "e", 3);
  tracker.addEvent("a", "e");
  tracker.clear();
  EXPECT_THAT(tracker.list(), IsEmpty());

  tracker.addEvent("a", "e");
  tracker.addEvent("b", "e");

  EXPECT_THAT(tracker.list(), ElementsAre(event("a", "e", 1), event("b", "e", 1)));
}

TEST_F(TrackerDatabaseTest, RecordsAreThereAfterReopening) {
  tracker.addEvent("n", "e", 4);

  TrackerDatabase reopened(std::make_shared<Database>(file));

  EXPECT_THAT(reopened.list(), ElementsAre(event("n", "e", 4)));
}

TEST_F(TrackerDatabaseTest, DetailsAreTheRecordsOfTheirMoment) {
  tracker.addEvent("n", "e", 4);
  tracker.addEvent(7, 2.5);

  const auto details = tracker.getNetworkTrackerDetails();
  tracker.addEvent("n", "e");
  tracker.clear();

  ASSERT_TRUE(details);
  ASSERT_THAT(*details, SizeIs(2));
  EXPECT_EQ((*details)[0]->networkID(), Value("n"));
  EXPECT_EQ((*details)[0]->event(), Value("e"));
  EXPECT_EQ((*details)[0]->count(), Value(4));
  EXPECT_EQ((*details)[1]->networkID(), Value(7));
  EXPECT_EQ((*details)[1]->event(), Value(2.5));
  EXPECT_EQ((*details)[1]->count(), Value(1));
}

TEST_F(TrackerDatabaseTest, TheInstalledHandlerIsAskedByTheComponent) {
  const auto shared = std::make_shared<TrackerDatabase>(database);
  DataBaseHandler::install(shared);
  shared->addEvent("n", "e");

  EXPECT_THAT(DataBaseHandler::sharedInastance()->getNetworkTrackerDetails(), testing::Optional(SizeIs(1)));
  DataBaseHandler::install(nullptr);
}

TEST_F(TrackerDatabaseTest, ALockedDatabaseIsAnErrorForWritersOnly) {
  tracker.addEvent("n", "e");
  Database holder(file);
  holder.run("BEGIN EXCLUSIVE");

  EXPECT_THROW(tracker.addEvent("n", "e"), DatabaseError);
  EXPECT_THROW(tracker.clear(), DatabaseError);
  EXPECT_THAT(tracker.list(), ElementsAre(event("n", "e", 1)));
  EXPECT_THAT(tracker.getNetworkTrackerDetails(), testing::Optional(SizeIs(1)));
  EXPECT_THAT(log->lines, IsEmpty());
}

TEST_F(TrackerDatabaseTest, RecordsThatCannotBeReadAreAbsentAndLoggedOnce) {
  database->run("PRAGMA journal_mode = DELETE");
  Database holder(file);
  holder.run("PRAGMA journal_mode = DELETE");
  holder.run("BEGIN EXCLUSIVE");

  EXPECT_EQ(tracker.getNetworkTrackerDetails(), std::nullopt);
  EXPECT_THROW(static_cast<void>(tracker.list()), DatabaseError);

  EXPECT_THAT(log->lines, ElementsAre("getNetworkTrackerDetails() - ERROR: the database " + file.string() +
                                      " is locked by another program: try again when it is done (database is locked)"));
}

TEST_F(TrackerDatabaseTest, ThreadsAndConnectionsLoseNoCount) {
  constexpr int kThreads = 4;
  constexpr int kEach = 25;
  std::vector<std::jthread> threads;

  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this] {
      TrackerDatabase own(std::make_shared<Database>(file, DatabaseOptions{.busyTimeout = 60s}));
      for (int i = 0; i < kEach; ++i) {
        own.addEvent("n", "e");
        EXPECT_THAT(tracker.list(), SizeIs(1));
      }
    });
  }
  threads.clear();

  EXPECT_THAT(tracker.list(), ElementsAre(event("n", "e", kThreads * kEach)));
}

// Adds events until it is killed, one byte into the pipe after each.
[[noreturn]] void addForever(const fs::path& file, int acknowledge) {
  TrackerDatabase tracker(std::make_shared<Database>(file));
  while (true) {
    tracker.addEvent("n", "e");
    if (::write(acknowledge, "+", 1) != 1) ::_exit(1);
  }
}

// Kills the child once it has acknowledged `least` events, and gives how many it acknowledged in all.
std::int64_t killAfter(std::int64_t least, pid_t child, int acknowledged) {
  std::int64_t count = 0;
  std::array<char, 256> bytes{};
  while (const ssize_t got = ::read(acknowledged, bytes.data(), bytes.size())) {
    if (got < 0) throw std::runtime_error("cannot read the pipe");
    count += got;
    if (count >= least) ::kill(child, SIGKILL);
  }
  ::waitpid(child, nullptr, 0);
  return count;
}

TEST(TrackerDatabaseCrash, AcknowledgedEventsSurviveAKillAtAnyMoment) {
  constexpr unsigned kSeed = 4711;
  constexpr int kRounds = 40;
  std::cout << "seed " << kSeed << '\n';
  std::mt19937 random(kSeed);
  const test::TemporaryFolder folder;
  const fs::path file = folder / "tracker.sqlite";
  std::int64_t before = 0;

  for (int round = 0; round < kRounds; ++round) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) addForever(file, pipe[1]);
    ::close(pipe[1]);
    const std::int64_t acknowledged = killAfter(1 + static_cast<std::int64_t>(random() % 30), child, pipe[0]);
    ::close(pipe[0]);

    const auto events = TrackerDatabase(std::make_shared<Database>(file)).list();
    ASSERT_THAT(events, SizeIs(1));
    const auto count = static_cast<std::int64_t>(events[0].count->ifInteger()->low);
    EXPECT_GE(count, before + acknowledged);
    EXPECT_LE(count, before + acknowledged + 1);
    before = count;
  }
}

}  // namespace
}  // namespace tavlo::host
