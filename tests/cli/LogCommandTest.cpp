#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/cli/CacheProgramTest.h"

namespace tavlo::cli::test {
namespace {

namespace fs = std::filesystem;

class LogTest : public CacheProgramTest {
 protected:
  [[nodiscard]] Result log(std::vector<std::string> arguments, Setting setting = {}) const {
    arguments.insert(arguments.begin(), "log");
    setting.environment["TAVLO_CONTAINER"] = container();
    return run(arguments, setting);
  }
  [[nodiscard]] std::string file() const { return path("TavloLogFile.txt"); }
  [[nodiscard]] std::string missing() const {
    return "tavlo: note: there is no log yet: " + file() +
           "; the SDK's operations write it once the cache directory is there, as tavlo cache fetch does\n";
  }
};

std::string numbered(int first, int last) {
  std::string text;
  for (int i = first; i <= last; ++i) text += "2026-11-21T09:30:00.123Z line " + std::to_string(i) + "\n";
  return text;
}

TEST_F(LogTest, ShowPrintsAllOfIt) {
  put("TavloLogFile.txt", numbered(1, 12));

  EXPECT_EQ(log({"show"}), (Result{0, numbered(1, 12), ""}));
}

TEST_F(LogTest, TailPrintsTheLastTen) {
  put("TavloLogFile.txt", numbered(1, 12));

  EXPECT_EQ(log({"tail"}), (Result{0, numbered(3, 12), ""}));
}

TEST_F(LogTest, TailPrintsAsManyAsAsked) {
  put("TavloLogFile.txt", numbered(1, 12));

  EXPECT_EQ(log({"tail", "--lines", "1"}).out, numbered(12, 12));
  EXPECT_EQ(log({"tail", "--lines", "12"}).out, numbered(1, 12));
  EXPECT_EQ(log({"tail", "--lines", "13"}).out, numbered(1, 12));
}

TEST_F(LogTest, LineWithoutAnEndIsALine) {
  put("TavloLogFile.txt", numbered(1, 2) + "half");

  EXPECT_EQ(log({"show"}).out, numbered(1, 2) + "half\n");
  EXPECT_EQ(log({"tail", "--lines", "2"}).out, numbered(2, 2) + "half\n");
}

TEST_F(LogTest, LineOfMoreThanAMebibyteComesInParts) {
  const std::string part((std::size_t{1} << 20U), 'x');
  put("TavloLogFile.txt", part + part + "rest\nnext\n");

  EXPECT_TRUE(log({"show"}).out == part + "\n" + part + "\nrest\nnext\n");
  EXPECT_TRUE(log({"show", "--json"}).out == R"([{"time":null,"message":")" + part + R"("},{"time":null,"message":")" +
                                                 part +
                                                 R"("},{"time":null,"message":"rest"},{"time":null,"message":"next"}])"
                                                 "\n");
}

// Its lines lie across the pieces that the file is read in.
TEST_F(LogTest, TailOfALongLogFindsTheLinesAcrossPieces) {
  put("TavloLogFile.txt", numbered(1, 20000));

  EXPECT_EQ(log({"tail", "--lines", "9000"}).out, numbered(11001, 20000));
}

TEST_F(LogTest, ControlCharactersAreEscapedAndBackslashesStay) {
  put("TavloLogFile.txt", "a\x1b[2Jb\tc\\nd\xff\r\n");

  EXPECT_EQ(log({"show"}).out, "a\\u{1b}[2Jb\\tc\\nd\\xff\\r\n");
}

TEST_F(LogTest, JsonHasTimeAndMessage) {
  put("TavloLogFile.txt", numbered(1, 1) + "no time\n2026-11-21T09:30:00.123Z\n2026-11-21 09:30:00.123Z \"x\"\n");

  EXPECT_EQ(log({"show", "--json"}).out,
            R"([{"time":"2026-11-21T09:30:00.123Z","message":"line 1"},{"time":null,"message":"no time"},)"
            R"({"time":null,"message":"2026-11-21T09:30:00.123Z"},)"
            R"({"time":null,"message":"2026-11-21 09:30:00.123Z \"x\""}])"
            "\n");
  EXPECT_EQ(log({"tail", "--lines", "3", "--json"}).out,
            R"([{"time":null,"message":"no time"},{"time":null,"message":"2026-11-21T09:30:00.123Z"},)"
            R"({"time":null,"message":"2026-11-21 09:30:00.123Z \"x\""}])"
            "\n");
}

TEST_F(LogTest, MissingLogIsToldAndNoFailure) {
  EXPECT_EQ(log({"show"}), (Result{0, "", missing()}));
  EXPECT_EQ(log({"tail"}), (Result{0, "", missing()}));
  EXPECT_EQ(log({"show", "--json"}), (Result{0, "[]\n", missing()}));
  EXPECT_EQ(log({"tail", "--quiet"}), (Result{0, "", ""}));
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(LogTest, EmptyLogHasNoLines) {
  put("TavloLogFile.txt", "");

  EXPECT_EQ(log({"tail"}), (Result{0, "", ""}));
  EXPECT_EQ(log({"tail", "--json"}), (Result{0, "[]\n", ""}));
}

TEST_F(LogTest, WhatIsNoRegularFileIsAFailureAndBlocksNobody) {
  fs::create_directories(directory());
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);

  EXPECT_EQ(log({"show"}), (Result{1, "",
                                   "tavlo: cannot read " + file() +
                                       ": it is no regular file; check what lies there, and the rights to it\n"}));
}

// The program is asked to end once it has printed what was added.
TEST_F(LogTest, FollowPrintsWhatIsAddedUntilItIsInterrupted) {
  put("TavloLogFile.txt", numbered(1, 2));
  const std::string printed = (folder_ / "printed").string();
  tavlo::test::writeFile(printed, "");
  const auto awaitPrinted = [&](const std::string& text) {
    while (tavlo::test::readFile(printed) != text) sched_yield();
  };

  const Result followed =
      log({"tail", "--lines", "1", "--follow"}, {.outputPath = printed, .afterStart = [&](int child) {
                                                   awaitPrinted(numbered(2, 2));
                                                   std::ofstream(file(), std::ios::app) << numbered(3, 3) << "ha";
                                                   awaitPrinted(numbered(2, 3));
                                                   std::ofstream(file(), std::ios::app) << "lf\n";
                                                   awaitPrinted(numbered(2, 3) + "half\n");
                                                   fs::remove(file());
                                                   put("TavloLogFile.txt", numbered(9, 9));
                                                   awaitPrinted(numbered(2, 3) + "half\n" + numbered(9, 9));
                                                   ::kill(child, SIGINT);
                                                 }});

  EXPECT_EQ(followed.exitCode, 0);
  EXPECT_EQ(followed.err, "");
}

TEST_F(LogTest, WrongUseIsTold) {
  EXPECT_EQ(log({}), (Result{2, "", "tavlo: A subcommand is required; see tavlo log --help\n"}));
  EXPECT_EQ(log({"tail", "--lines", "0"}),
            (Result{2, "", "tavlo: COUNT \"0\" is no integer from 1 to 1000000000; see tavlo log tail --help\n"}));
  EXPECT_EQ(log({"tail", "--follow", "--json"}),
            (Result{2, "", "tavlo: --follow has no JSON; see tavlo log tail --help\n"}));
}

}  // namespace
}  // namespace tavlo::cli::test
