#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

class EventCommandTest : public testing::Test {
 protected:
  Result tavlo(const std::vector<std::string>& arguments) const {
    return run(arguments, {.environment = {{"TAVLO_CONTAINER", container()}}});
  }
  void add(const std::vector<std::string>& words) const {
    std::vector<std::string> arguments{"event", "add"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    ASSERT_EQ(tavlo(arguments), (Result{0, "", ""}));
  }
  std::string container() const { return (folder_ / "container").string(); }

  const ::tavlo::test::TemporaryFolder folder_;
};

TEST_F(EventCommandTest, ReadingAndClearingMakeNoContainer) {
  EXPECT_EQ(tavlo({"event", "list"}), (Result{0, "", ""}));
  EXPECT_EQ(tavlo({"event", "list", "--json"}), (Result{0, "[]\n", ""}));
  EXPECT_EQ(tavlo({"event", "clear"}), (Result{0, "", ""}));
  EXPECT_EQ(tavlo({"request", "tracker", "--quiet"}).exitCode, 0);
  EXPECT_EQ(tavlo({"request", "user", "--quiet"}).exitCode, 0);

  EXPECT_FALSE(std::filesystem::exists(container()));
}

TEST_F(EventCommandTest, ReadingMakesNoDatabaseInAContainerWithoutOne) {
  ASSERT_EQ(tavlo({"id", "set", "app", "a"}).exitCode, 0);

  EXPECT_EQ(tavlo({"event", "list"}), (Result{0, "", ""}));
  EXPECT_EQ(tavlo({"request", "tracker", "--quiet"}).exitCode, 0);

  EXPECT_FALSE(std::filesystem::exists(container() + "/Library/tracker.sqlite"));
}

TEST_F(EventCommandTest, EventsOfAPairAddUpAndPairsKeepTheirOrder) {
  add({"network-7", "impression"});
  add({"network-7", "click", "5"});
  add({"network-7", "impression", "2"});

  EXPECT_EQ(tavlo({"event", "list"}), (Result{0, "network-7\timpression\t3\nnetwork-7\tclick\t5\n", ""}));
  EXPECT_EQ(tavlo({"event", "list", "--json"}), (Result{0,
                                                        R"([{"networkID":"network-7","event":"impression","count":3},)"
                                                        R"({"networkID":"network-7","event":"click","count":5}])"
                                                        "\n",
                                                        ""}));
}

TEST_F(EventCommandTest, ARecordIsOneLineWhateverItHolds) {
  add({"a\tb\n", "\\ü"});

  EXPECT_EQ(tavlo({"event", "list"}), (Result{0, "a\\tb\\n\t\\\\ü\t1\n", ""}));
}

TEST_F(EventCommandTest, LargestCountIsKept) {
  add({"n", "e", "9223372036854775807"});

  EXPECT_EQ(tavlo({"event", "list"}), (Result{0, "n\te\t9223372036854775807\n", ""}));
}

TEST_F(EventCommandTest, ClearRemovesAll) {
  add({"n", "e"});

  EXPECT_EQ(tavlo({"event", "clear"}), (Result{0, "", ""}));
  EXPECT_EQ(tavlo({"event", "list"}), (Result{0, "", ""}));
}

TEST_F(EventCommandTest, WhatIsNoCountIsAUsageError) {
  for (const std::string count : {"0", "-5", "1.5", "+1", "", " 1", "x", "1x", "9223372036854775808"}) {
    EXPECT_EQ(tavlo({"event", "add", "n", "e", count}),
              (Result{2, "",
                      "tavlo: COUNT \"" + count +
                          "\" is no integer from 1 to 9223372036854775807; see tavlo event add --help\n"}));
  }
  EXPECT_FALSE(std::filesystem::exists(container()));
}

TEST_F(EventCommandTest, DamagedDatabaseIsOneLineAndStaysAsItIs) {
  add({"n", "e"});
  const std::string file = container() + "/Library/tracker.sqlite";
  ::tavlo::test::writeFile(file, std::string(8192, 'x'));
  std::filesystem::remove(file + "-wal");
  std::filesystem::remove(file + "-shm");

  const std::string error = "tavlo: the database " + file +
                            " is no database: give another path, or move it away, and a new one is made "
                            "(file is not a database)\n";
  const std::vector<std::vector<std::string>> readers{{"event", "add", "n", "e"}, {"event", "list"},
                                                      {"event", "clear"},         {"use"},
                                                      {"request", "user"},        {"request", "tracker"}};
  for (const auto& arguments : readers) EXPECT_EQ(tavlo(arguments), (Result{1, "", error})) << arguments.back();

  EXPECT_EQ(tavlo({"request", "ad", "--quiet"}).exitCode, 0);
  EXPECT_EQ(::tavlo::test::readFile(file), std::string(8192, 'x'));
}

TEST_F(EventCommandTest, ContainerThatIsAFileIsAnError) {
  ::tavlo::test::writeFile(container(), "");

  const Result result = tavlo({"event", "add", "n", "e"});

  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, testing::StartsWith("tavlo: the database " + container() + "/Library/tracker.sqlite "));
}

TEST_F(EventCommandTest, ContainerThatIsAFileDoesNotPassForAnEmptyOne) {
  ::tavlo::test::writeFile(container(), "");
  const Result noFolder = {1, "", "tavlo: the container " + container() + " is no folder; give another one\n"};

  EXPECT_EQ(tavlo({"event", "list"}), noFolder);
  EXPECT_EQ(tavlo({"request", "user"}), noFolder);
}

TEST_F(EventCommandTest, TrackerRequestSendsTheStoredRecords) {
  add({"network-7", "impression", "3"});
  const Result lone = tavlo({"request", "tracker", "--quiet"});
  add({"network-8", "click"});
  const Result two = tavlo({"request", "tracker", "--quiet"});

  EXPECT_THAT(lone.out, testing::EndsWith(",\"track_id\":\"2423432432\",\"network_event_count\":[]}\n"));
  EXPECT_THAT(two.out, testing::EndsWith(R"("network_event_count":[{"network_id":"network-7","event":"impression",)"
                                         R"("count":3},{"network_id":"network-8","event":"click","count":1}]})"
                                         "\n"));
}

TEST_F(EventCommandTest, UseIsCountedAndReadByTheUserRequest) {
  const Result before = tavlo({"request", "user", "--quiet"});
  ASSERT_EQ(tavlo({"use"}), (Result{0, "", ""}));
  const Result first = tavlo({"request", "user", "--quiet"});
  ASSERT_EQ(tavlo({"use"}), (Result{0, "", ""}));
  const Result second = tavlo({"request", "user", "--quiet"});

  EXPECT_EQ(before, (Result{0, "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0\n", ""}));
  EXPECT_THAT(first.out,
              testing::MatchesRegex("&ru=1&ru_n=&uud=1&uud_n=[0-9]+&uuw=1&uuw_n=[0-9]+&uum=1&uum_n=[0-9]+\n"));
  EXPECT_THAT(second.out, testing::StartsWith("&ru=0&ru_n=&uud="));
}

}  // namespace
}  // namespace tavlo::cli::test
