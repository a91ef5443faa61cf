#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

class IdCommandTest : public testing::Test {
 protected:
  Result id(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "id");
    return run(arguments, {.environment = {{"TAVLO_CONTAINER", container()}}});
  }
  std::string container() const { return (folder_ / "container").string(); }
  void put(const std::string& key, const std::string& value) const {
    ASSERT_EQ(id({"set", key, "--", value}), (Result{0, "", ""}));
  }

  const tavlo::test::TemporaryFolder folder_;
};

TEST_F(IdCommandTest, WhatWasNeverSetIsAbsent) {
  EXPECT_EQ(id({"get", "app"}), (Result{0, "(null)\n", ""}));
  EXPECT_EQ(id({"get", "security", "--json"}), (Result{0, "null\n", ""}));
  EXPECT_EQ(id({"show"}), (Result{0, "ApplicationId  (null)\nOptionalId     (null)\nSecurityKey    (null)\n", ""}));
}

TEST_F(IdCommandTest, ReadingMakesNoContainer) {
  static_cast<void>(id({"get", "app"}));
  static_cast<void>(id({"show"}));

  EXPECT_FALSE(std::filesystem::exists(container()));
}

TEST_F(IdCommandTest, WhatWasSetIsReadByTheNextRun) {
  put("app", "com.example.kino");
  put("optional", "Zoë & Co");
  put("app", " ");

  EXPECT_EQ(id({"get", "app"}), (Result{0, " \n", ""}));
  EXPECT_EQ(id({"get", "optional"}), (Result{0, "Zoë & Co\n", ""}));
  EXPECT_EQ(id({"get", "optional", "--json"}), (Result{0, "\"Zoë & Co\"\n", ""}));
}

TEST_F(IdCommandTest, KeysGoByTwoNames) {
  put("ApplicationId", "a");
  put("OptionalId", "o");
  put("SecurityKey", "s");

  EXPECT_EQ(id({"get", "app"}).out, "a\n");
  EXPECT_EQ(id({"get", "optional"}).out, "o\n");
  EXPECT_EQ(id({"get", "security", "--reveal"}).out, "s\n");
}

TEST_F(IdCommandTest, SecurityKeyIsMaskedUnlessRevealed) {
  put("security", "s3cr3t");

  EXPECT_EQ(id({"get", "security"}), (Result{0, "********\n", ""}));
  EXPECT_EQ(id({"get", "security", "--json"}), (Result{0, "\"********\"\n", ""}));
  EXPECT_EQ(id({"get", "security", "--reveal"}), (Result{0, "s3cr3t\n", ""}));
  EXPECT_EQ(id({"show"}), (Result{0, "ApplicationId  (null)\nOptionalId     (null)\nSecurityKey    ********\n", ""}));
  EXPECT_EQ(id({"show", "--json"}), (Result{0,
                                            R"({"ApplicationId":null,"OptionalId":null,"SecurityKey":"********"})"
                                            "\n",
                                            ""}));
  EXPECT_EQ(id({"show", "--reveal", "--json"}),
            (Result{0,
                    R"({"ApplicationId":null,"OptionalId":null,"SecurityKey":"s3cr3t"})"
                    "\n",
                    ""}));
}

TEST_F(IdCommandTest, OthersAreShownAsTheyAreButOnOneLine) {
  put("app", "a\n\x1b[31m");
  put("optional", "-x");

  EXPECT_EQ(id({"show"}).out, "ApplicationId  a\\n\\u{1b}[31m\nOptionalId     -x\nSecurityKey    (null)\n");
  EXPECT_EQ(id({"get", "app"}).out, "a\n\x1b[31m\n");
}

TEST_F(IdCommandTest, EmptyValueIsRefusedAndTheOldOneStays) {
  put("app", "old");

  EXPECT_EQ(id({"set", "app", ""}),
            (Result{1, "", "tavlo: ApplicationId was not stored: an empty value is ignored; give one that is not\n"}));
  EXPECT_EQ(id({"get", "app"}).out, "old\n");
}

TEST_F(IdCommandTest, ValueThatCannotBeWrittenIsAnError) {
  tavlo::test::writeFile(container(), "a file where the container should be");

  EXPECT_EQ(id({"set", "app", "a"}),
            (Result{1, "",
                    "tavlo: ApplicationId was not stored: " + container() +
                        "/Library/Preferences/tavlo.plist could not be written; check the rights to its folder, the "
                        "free space, and whether another program holds its lock\n"}));
}

TEST_F(IdCommandTest, SettingsThatCannotBeReadDoNotPassForAbsentOnes) {
  const std::string settings = container() + "/Library/Preferences/tavlo.plist";
  std::filesystem::create_directories(settings);
  const Result unreadable = {1, "",
                             "tavlo: cannot read " + settings +
                                 "; check that it is a regular file of at most 64 MiB, in folders, and the rights "
                                 "to it\n"};

  EXPECT_EQ(id({"get", "app"}), unreadable);
  EXPECT_EQ(id({"show"}), unreadable);
  EXPECT_EQ(run({"request", "in-app"}, {.environment = {{"TAVLO_CONTAINER", container()}}}), unreadable);
}

TEST_F(IdCommandTest, DomainsAreSettingsOfTheirOwn) {
  put("app", "a");

  EXPECT_EQ(id({"get", "app", "--domain", "other"}).out, "(null)\n");
  EXPECT_EQ(id({"get", "app", "--domain", "tavlo"}).out, "a\n");
  EXPECT_TRUE(std::filesystem::exists(container() + "/Library/Preferences/tavlo.plist"));
}

TEST_F(IdCommandTest, ContainerOptionWinsOverTheVariable) {
  put("app", "a");

  EXPECT_EQ(id({"get", "app", "--container", (folder_ / "other").string()}).out, "(null)\n");
}

TEST_F(IdCommandTest, ContainerIsTheDomainsFolderAmongTheUsersData) {
  const Setting setting{.environment = {{"XDG_DATA_HOME", folder_.path().string()}, {"TAVLO_CONTAINER", ""}}};

  ASSERT_EQ(run({"id", "set", "app", "a", "--domain", "org.example"}, setting), (Result{0, "", ""}));

  EXPECT_TRUE(std::filesystem::exists(folder_ / "org.example/Library/Preferences/org.example.plist"));
}

TEST_F(IdCommandTest, DamagedSettingsAreToldUnlessQuiet) {
  put("app", "a");
  tavlo::test::writeFile(container() + "/Library/Preferences/tavlo.plist", "no property list");

  const Result told = id({"get", "app"});
  const Result quiet = id({"get", "app", "--quiet"});

  EXPECT_EQ(told.out, "(null)\n");
  EXPECT_NE(told.err.find("is damaged"), std::string::npos) << told.err;
  EXPECT_EQ(quiet, (Result{0, "(null)\n", ""}));
}

}  // namespace
}  // namespace tavlo::cli::test
