#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "TavloVersion.h"
#include "tests/cli/ChildProgram.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

struct UsageCase {
  const char* name;
  std::vector<std::string> arguments;
  const char* message;
  const char* help = "tavlo";  // the command whose help it points to
};

void PrintTo(const UsageCase& row, std::ostream* stream) { *stream << row.name; }

class UsageErrorTest : public testing::TestWithParam<UsageCase> {};

TEST_P(UsageErrorTest, IsExitCodeTwoOneLineAndNoAnswer) {
  EXPECT_EQ(run(GetParam().arguments),
            (Result{2, "", std::string("tavlo: ") + GetParam().message + "; see " + GetParam().help + " --help\n"}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UsageErrorTest,
    testing::ValuesIn(std::vector<UsageCase>{
        {"NoCommand", {}, "A subcommand is required"},
        {"OnlyOptions", {"--quiet"}, "A subcommand is required"},
        {"UnknownCommand", {"frobnicate"}, "\"frobnicate\" is unexpected here"},
        {"UnknownOption", {"md5", "a", "--loud"}, "\"--loud\" is unexpected here", "tavlo md5"},
        {"TextTooMany", {"id", "get", "app", "[x]"}, "\"[x]\" is unexpected here", "tavlo id get"},
        {"NoRequest", {"request"}, "NAME is required", "tavlo request"},
        {"UnknownRequest",
         {"request", "video"},
         "the request \"video\" is none of ad, in-app, user, tracker",
         "tavlo request"},
        {"SessionWithoutItsFile",
         {"request", "ad", "--session"},
         "--session: 1 required FILE missing",
         "tavlo request"},
        {"NoIdentifierCommand", {"id"}, "A subcommand is required", "tavlo id"},
        {"UnknownIdentifier",
         {"id", "get", "secret"},
         "the key \"secret\" is none of app, optional, security, ApplicationId, OptionalId, SecurityKey",
         "tavlo id get"},
        {"NoIdentifierValue", {"id", "set", "app"}, "VALUE is required", "tavlo id set"},
        {"UnknownContract",
         {"contract", "video"},
         "the request \"video\" is none of ad, in-app, user, tracker",
         "tavlo contract"},
        {"UnknownFormat",
         {"contract", "ad", "--format", "xml"},
         "the format \"xml\" is none of table, json, markdown",
         "tavlo contract"},
        {"NoEventCommand", {"event"}, "A subcommand is required", "tavlo event"},
        {"NoEvent", {"event", "add", "n"}, "EVENT is required", "tavlo event add"},
        {"DashesAreNoWord", {"event", "add", "--", "n"}, "EVENT is required", "tavlo event add"},
        {"UnknownColor", {"demo", "--color", "red"}, "the colour \"red\" is none of auto, always, never", "tavlo demo"},
        {"DomainWithSlash",
         {"id", "show", "--domain", "a/b"},
         "the domain \"a/b\" is no file name: it must have 1 to 240 bytes, no \"/\" and no NUL, and be neither \".\" "
         "nor "
         "\"..\""},
        {"EmptyDomain", {"id", "show", "--domain", ""}, "--domain takes a name, and \"\" is none"},
        {"EmptyContainer", {"id", "show", "--container", ""}, "the container is an empty path"},
        {"NoCacheCommand", {"cache"}, "A subcommand is required", "tavlo cache"},
        {"UnknownCacheCommand", {"cache", "frobnicate"}, "\"frobnicate\" is unexpected here", "tavlo cache"},
        {"NoCacheName", {"cache", "path"}, "NAME is required", "tavlo cache path"},
        {"NothingToFetch", {"cache", "fetch"}, "URL is required", "tavlo cache fetch"},
        {"UnknownList",
         {"cache", "list", "banner"},
         "the list \"banner\" is none of video, interstitial",
         "tavlo cache list"},
        {"NoListFile", {"cache", "put-list", "video"}, "FILE is required", "tavlo cache put-list"},
        {"ArgumentForClear", {"cache", "clear", "all"}, "\"all\" is unexpected here", "tavlo cache clear"},
        {"SecondUrl", {"cache", "explain", "a", "b"}, "\"b\" is unexpected here", "tavlo cache explain"},
        {"ControlCharactersAreEscaped", {"\x1b[31m"}, "\"\\u{1b}[31m\" is unexpected here"},
    }),
    tavlo::test::kCaseName);

TEST(CommandLineTest, VersionIsTheAnswer) {
  EXPECT_EQ(run({"--version"}), (Result{0, "tavlo " TAVLO_VERSION "\n", ""}));
  EXPECT_EQ(run({"md5", "--version"}), (Result{0, "tavlo " TAVLO_VERSION "\n", ""}));
}

TEST(CommandLineTest, HelpTeaches) {
  const Result help = run({"--help"});

  EXPECT_EQ(help.exitCode, 0);
  EXPECT_EQ(help.err, "");
  EXPECT_THAT(help.out, testing::StartsWith("tavlo shows and checks what the SDK's utility component does"));
  EXPECT_THAT(help.out, testing::HasSubstr("\nUsage: tavlo [OPTIONS] SUBCOMMAND\n"));
  EXPECT_THAT(help.out,
              testing::HasSubstr("\nExamples:\n  tavlo request ad --session examples/session.json --pretty\n"));
  EXPECT_THAT(help.out, testing::HasSubstr("\nExit codes:\n  0  done;"));
  EXPECT_EQ(run({"-h"}), help);
}

TEST(CommandLineTest, EveryCommandHasHelpWithAnExampleOfItself) {
  std::vector<std::vector<std::string>> commands{{"request"},        {"id"},    {"id", "get"},    {"id", "set"},
                                                 {"id", "show"},     {"md5"},   {"extension"},    {"encode"},
                                                 {"contract"},       {"event"}, {"event", "add"}, {"event", "list"},
                                                 {"event", "clear"}, {"use"},   {"demo"}};
  for (const char* const name :
       {"path", "video", "saved", "banner", "fetch", "explain", "ls", "list", "put-list", "sort", "delete", "clear"}) {
    commands.push_back({"cache", name});
  }
  commands.push_back({"cache"});
  for (auto arguments : commands) {
    std::string words = "tavlo";
    for (const std::string& word : arguments) words += " " + word;
    arguments.emplace_back("--help");

    const Result help = run(arguments);

    EXPECT_EQ(help.exitCode, 0) << words;
    EXPECT_EQ(help.err, "") << words;
    EXPECT_THAT(help.out, testing::HasSubstr("\nExample:\n  "));
    EXPECT_THAT(help.out, testing::HasSubstr(words + " "));
  }
}

TEST(CommandLineTest, GlobalOptionsWorkBeforeBetweenAndAfterCommands) {
  const tavlo::test::TemporaryFolder folder;
  const std::string container = (folder / "c").string();

  ASSERT_EQ(run({"--container", container, "--domain=d", "id", "set", "app", "a"}).exitCode, 0);

  EXPECT_EQ(run({"--json", "id", "--container", container, "get", "--domain", "d", "app"}), (Result{0, "\"a\"\n", ""}));
  EXPECT_EQ(run({"id", "get", "app", "--json", "--domain", "d", "--container=" + container}),
            (Result{0, "\"a\"\n", ""}));
  EXPECT_EQ(run({"request", "ad", "--quiet", "--container", container}).err, "");
  EXPECT_EQ(run({"--quiet", "request", "ad", "--container", container}).err, "");
}

TEST(CommandLineTest, ContainerMayBeCalledLikeAnything) {
  const tavlo::test::TemporaryFolder folder;

  for (const std::string name : {"[a,b]", "++", "id", "ü"}) {
    const Setting there{.folder = folder.path().string()};
    ASSERT_EQ(run({"id", "set", "app", name, "--container", name}, there), (Result{0, "", ""}));
    EXPECT_EQ(run({"id", "get", "app", "--container", name}, there), (Result{0, name + "\n", ""}));
    EXPECT_TRUE(std::filesystem::exists(folder / name / "Library"));
  }
}

}  // namespace
}  // namespace tavlo::cli::test
