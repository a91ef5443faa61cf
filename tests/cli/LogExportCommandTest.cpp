// tavlo log export, on the real desktop portal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/CacheProgramTest.h"
#include "tests/support/PortalWorld.h"

namespace tavlo::cli::test {
namespace {

constexpr const char* kNote = "tavlo: note: choose an app on the desktop; Ctrl-C takes the menu back\n";

class LogExportCommand : public CacheProgramTest {
 protected:
  // On the bus of this process, if it has one.
  [[nodiscard]] Result exportLog(std::vector<std::string> options = {}, Setting setting = {}) const {
    options.insert(options.begin(), {"log", "export"});
    setting.environment["TAVLO_CONTAINER"] = container();
    const char* const bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (bus) setting.environment["DBUS_SESSION_BUS_ADDRESS"] = bus;
    return run(options, setting);
  }
  [[nodiscard]] std::string file() const { return path("TavloLogFile.txt"); }
  [[nodiscard]] std::string console() const { return "Documents Directory: file://" + container() + "/Documents/\n"; }
};

class LogExportOnADesktop : public LogExportCommand {
 protected:
  void SetUp() override {
    if (!tavlo::test::PortalWorld::isInstalled()) {
      GTEST_SKIP() << "needs dbus-daemon, xdg-desktop-portal, python3-dbus and python3-gi";
    }
    put("TavloLogFile.txt", "a line\n");
  }
};

TEST_F(LogExportOnADesktop, ChosenAppGetsTheLog) {
  tavlo::test::PortalWorld desktop("whole");

  const Result exported = exportLog({}, {.afterStart = [&](int) {
                                      EXPECT_EQ(desktop.next(), "asked - file://" + file());
                                      desktop.tell("choose");
                                      EXPECT_EQ(desktop.next(), "opened " + file());
                                    }});

  EXPECT_EQ(exported, (Result{0, "opened\n", console() + kNote}));
}

TEST_F(LogExportOnADesktop, JsonHasOutcomeAndFile) {
  tavlo::test::PortalWorld desktop("whole");

  const Result exported = exportLog({"--json", "--quiet"}, {.afterStart = [&](int) {
                                      static_cast<void>(desktop.next());
                                      desktop.tell("cancel");
                                    }});

  EXPECT_EQ(exported, (Result{0, R"({"outcome":"cancelled","path":")" + file() + "\"}\n", ""}));
}

TEST_F(LogExportOnADesktop, InterruptionTakesTheMenuBack) {
  tavlo::test::PortalWorld desktop("whole");

  const Result exported = exportLog({"--quiet"}, {.afterStart = [&](int child) {
                                      static_cast<void>(desktop.next());
                                      ::kill(child, SIGINT);
                                      EXPECT_EQ(desktop.next(), "closed");
                                    }});

  EXPECT_EQ(exported, (Result{1, "", "tavlo: interrupted; the menu is taken back, and nothing was opened\n"}));
}

TEST_F(LogExportOnADesktop, DoctorFindsThePortal) {
  const tavlo::test::PortalWorld desktop("whole");

  EXPECT_THAT(
      run({"doctor"}, {.environment = {{"DBUS_SESSION_BUS_ADDRESS", std::getenv("DBUS_SESSION_BUS_ADDRESS")}}}).out,
      testing::HasSubstr("\nok     portal        the portal is on the session's bus\n"));
}

TEST_F(LogExportOnADesktop, DoctorMissesThePortalOfABareBus) {
  const tavlo::test::PortalWorld desktop("no-portal");

  EXPECT_THAT(
      run({"doctor"}, {.environment = {{"DBUS_SESSION_BUS_ADDRESS", std::getenv("DBUS_SESSION_BUS_ADDRESS")}}}).out,
      testing::HasSubstr("\nnote   portal        there is no desktop portal on the session's bus; "));
}

TEST_F(LogExportCommand, WithoutADesktopNothingIsShown) {
  put("TavloLogFile.txt", "a line\n");

  const Result exported = exportLog({}, {.environment = {{"XDG_RUNTIME_DIR", (folder_ / "none").string()}}});

  EXPECT_EQ(exported.exitCode, 1);
  EXPECT_EQ(exported.out, "");
  EXPECT_THAT(exported.err, testing::StartsWith(console() + "tavlo: the log was not handed on: "));
  EXPECT_THAT(exported.err, testing::EndsWith("; run it in a desktop session with a portal, or take the file from "
                                              "where it is: " +
                                              file() + "\n"));
  EXPECT_THAT(log(), testing::Contains("Log file is created"));
}

TEST_F(LogExportCommand, MissingLogHasARemedyOfItsOwn) {
  EXPECT_EQ(exportLog({"--quiet"}),
            (Result{1, "",
                    "tavlo: the log was not handed on: No such file or directory: " + file() +
                        "; the SDK's operations write the log once the cache directory is there, as tavlo cache fetch "
                        "does\n"}));
}

TEST_F(LogExportCommand, LogThatIsNoFileHasARemedyOfItsOwn) {
  std::filesystem::create_directories(file());

  EXPECT_EQ(exportLog({"--quiet"}), (Result{1, "",
                                            "tavlo: the log was not handed on: no regular file: " + file() +
                                                "; check what lies there, and the rights to it\n"}));
}

}  // namespace
}  // namespace tavlo::cli::test
