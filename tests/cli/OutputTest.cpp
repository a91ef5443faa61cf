#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

const std::vector<std::vector<std::string>> kAnswering{
    {"--help"},     {"--version"},
    {"md5", "a"},   {"contract", "--format", "json"},
    {"id", "show"}, {"request", "tracker", "--session", "-", "--pretty"},
    {"demo"},       {"cache", "path", "a"},
};

Result runWithOutput(const std::vector<std::string>& arguments, Setting setting) {
  const tavlo::test::TemporaryFolder folder;
  setting.environment["TAVLO_CONTAINER"] = folder.path().string();
  setting.input = "{}";
  return run(arguments, setting);
}

TEST(OutputTest, FullDiskIsAnError) {
  for (const auto& arguments : kAnswering) {
    EXPECT_EQ(
        runWithOutput(arguments, {.outputPath = "/dev/full"}),
        (Result{1, "", "tavlo: cannot write standard output: No space left on device; the answer is not complete\n"}))
        << arguments.front();
  }
}

TEST(OutputTest, ClosedOutputIsAnError) {
  for (const auto& arguments : kAnswering) {
    EXPECT_EQ(runWithOutput(arguments, {.output = Stream::closed}),
              (Result{1, "", "tavlo: cannot write standard output: Bad file descriptor; the answer is not complete\n"}))
        << arguments.front();
  }
}

TEST(OutputTest, BrokenPipeIsAnError) {
  for (const auto& arguments : kAnswering) {
    EXPECT_EQ(runWithOutput(arguments, {.output = Stream::closedPipe}),
              (Result{1, "", "tavlo: cannot write standard output: Broken pipe; the answer is not complete\n"}))
        << arguments.front();
  }
}

// The settings' lock would be the first file to get the closed stream's number, and then the console's line.
TEST(OutputTest, WhatIsWrittenToAClosedStreamEndsUpInNoFile) {
  const tavlo::test::TemporaryFolder folder;
  const std::string settings = (folder / "Library/Preferences/tavlo.plist").string();
  const std::vector<std::string> setApp{"id", "set", "app", "a", "--container", folder.path().string()};
  ASSERT_EQ(run(setApp), (Result{0, "", ""}));
  tavlo::test::writeFile(settings, "damaged, which is told on the console");

  EXPECT_EQ(run(setApp, {.errorClosed = true}), (Result{0, "", ""}));

  EXPECT_TRUE(std::filesystem::exists(settings + ".damaged"));
  EXPECT_EQ(tavlo::test::readFile(settings + ".lock"), "");
}

constexpr const char* kPlainFirstRows =
    "#  key    source                   raw     rendering  sent\n"
    "1  ru     getIsUserNew             0       integer    \"0\"\n"
    "2  ru_n                            \"\"      constant   \"\"\n"
    "3  uud    getUniqueUserDayValue    0       integer    \"0\"\n"
    "4  uud_n  getUniqueUserDay         absent  as is      \"(null)\"\n";
constexpr const char* kStyledHeadings =
    "\x1b[1m#\x1b[0m  \x1b[1mkey\x1b[0m    \x1b[1msource\x1b[0m                   \x1b[1mraw\x1b[0m     "
    "\x1b[1mrendering\x1b[0m  \x1b[1msent\x1b[0m\n";

std::string prettyUser(std::vector<std::string> options, Setting setting) {
  options.insert(options.begin(), {"request", "user", "--session", "-", "--pretty"});
  setting.input = "{}";
  return run(options, setting).out;
}

TEST(OutputTest, ColourIsForTerminalsUnlessAskedFor) {
  using testing::StartsWith;
  const Setting terminal{.output = Stream::terminal};

  EXPECT_THAT(prettyUser({}, {}), StartsWith(kPlainFirstRows));
  EXPECT_THAT(prettyUser({}, terminal), StartsWith(kStyledHeadings));
  EXPECT_THAT(prettyUser({"--color", "never"}, terminal), StartsWith(kPlainFirstRows));
  EXPECT_THAT(prettyUser({"--color", "auto"}, terminal), StartsWith(kStyledHeadings));
  EXPECT_THAT(prettyUser({"--color", "always"}, {}), StartsWith(kStyledHeadings));
}

TEST(OutputTest, NoColorAndDumbTerminalsAreHonoured) {
  using testing::StartsWith;
  const auto terminal = [](const char* variable, const char* value) {
    return Setting{.environment = {{variable, value}}, .output = Stream::terminal};
  };

  EXPECT_THAT(prettyUser({}, terminal("NO_COLOR", "1")), StartsWith(kPlainFirstRows));
  EXPECT_THAT(prettyUser({}, terminal("NO_COLOR", "")), StartsWith(kStyledHeadings));
  EXPECT_THAT(prettyUser({}, terminal("TERM", "dumb")), StartsWith(kPlainFirstRows));
  EXPECT_THAT(prettyUser({"--color", "always"}, terminal("NO_COLOR", "1")), StartsWith(kStyledHeadings));
}

TEST(OutputTest, LongValuesAreCutOnATerminalOnly) {
  const std::string session = R"({"uniqueUser": {"getUniqueUserDay": ")" + std::string(100, 'x') + "\"}}";
  const std::vector<std::string> arguments{"request", "user", "--session", "-", "--pretty", "--color", "never"};
  const std::string whole = '"' + std::string(100, 'x') + '"';

  const Result narrow = run(arguments, {.input = session, .output = Stream::terminal, .terminalWidth = 100});
  const Result unknown = run(arguments, {.input = session, .output = Stream::terminal});
  const Result file = run(arguments, {.input = session});

  EXPECT_THAT(narrow.out,
              testing::HasSubstr("\n4  uud_n  getUniqueUserDay         \"xxxxxxxxxxxxxxxxxxxxxxxx…  as is      "
                                 "\"xxxxxxxxxxxxxxxxxxxxxxxx…\n"));
  EXPECT_THAT(unknown.out, testing::HasSubstr("  as is      \"xxxxxxxxxxxxxxxx…\n"));
  EXPECT_THAT(file.out, testing::HasSubstr("  " + whole + "  as is      " + whole + "\n"));
}

}  // namespace
}  // namespace tavlo::cli::test
