// The log export on the real platform and the real desktop portal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "common/Slot.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/AwaitedLogger.h"
#include "tests/platform/linux/AwaitedOutcomes.h"
#include "tests/support/PortalWorld.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

constexpr const char* kNoMenu = "failed: the desktop portal could not show its menu, or no app could open the file";

class Window final : public platform::View {
 public:
  Text windowHandle() const override { return "x11:2a"; }
};

class Screen final : public platform::ViewController {
 public:
  std::shared_ptr<platform::View> view() override { return std::make_shared<Window>(); }
};

class LogExportPortal : public testing::Test {
 protected:
  LogExportPortal() {
    platform::install(linux_platform::make(
        {.container = folder_.path(), .domain = "player", .quietConsole = true, .onOpenInMenu = outcomes_.handler()}));
    Logger::install(logger_);
    std::filesystem::create_directories(folder_ / "Documents/TavloCache");
    writeFile(log(), "a line\n");
  }
  ~LogExportPortal() override {
    processSlot<platform::DocumentInteractionController>().store(nullptr);
    platform::install(nullptr);
    Logger::install(nullptr);
  }
  void SetUp() override {
    if (!PortalWorld::isInstalled())
      GTEST_SKIP() << "needs dbus-daemon, xdg-desktop-portal, python3-dbus and python3-gi";
  }

  [[nodiscard]] std::string log() const { return (folder_ / "Documents/TavloCache/TavloLogFile.txt").string(); }
  [[nodiscard]] std::string askedOverTheWindow() const { return "asked x11:2a file://" + log(); }
  void exportOverTheWindow() { TavloUtility::getExportTavloSDKLog(&screen_); }

  TemporaryFolder folder_;
  AwaitedOutcomes outcomes_;
  std::shared_ptr<AwaitedLogger> logger_ = std::make_shared<AwaitedLogger>();
  Screen screen_;
};

TEST_F(LogExportPortal, HandsTheLogToTheAppThatIsChosen) {
  PortalWorld desktop("whole");

  exportOverTheWindow();

  EXPECT_THAT(logger_->take(), ElementsAre("Log file is created"));
  EXPECT_EQ(desktop.next(), askedOverTheWindow());
  desktop.tell("choose");
  EXPECT_EQ(desktop.next(), "opened " + log());
  EXPECT_EQ(outcomes_.next(), "opened");
  EXPECT_THAT(desktop.end(), IsEmpty());
}

TEST_F(LogExportPortal, ASecondOneTakesTheMenuOfTheFirstBack) {
  PortalWorld desktop("whole");

  exportOverTheWindow();
  EXPECT_EQ(desktop.next(), askedOverTheWindow());
  exportOverTheWindow();

  EXPECT_EQ(outcomes_.next(), "cancelled: the menu was taken back");
  const std::vector<std::string> happened{desktop.next(), desktop.next()};
  EXPECT_THAT(happened, UnorderedElementsAre("closed", askedOverTheWindow()));
  desktop.tell("cancel");
  EXPECT_EQ(outcomes_.next(), "cancelled: no app was chosen");
  EXPECT_THAT(logger_->take(), ElementsAre("Log file is created", "Log file is created"));
  EXPECT_THAT(desktop.end(), IsEmpty());
}

TEST_F(LogExportPortal, OneAfterTheOtherAsksOnceEach) {
  PortalWorld desktop("whole");

  for (int i = 0; i < 3; ++i) {
    exportOverTheWindow();
    EXPECT_EQ(desktop.next(), askedOverTheWindow());
    desktop.tell("cancel");
    EXPECT_EQ(outcomes_.next(), "cancelled: no app was chosen");
  }

  EXPECT_THAT(desktop.end(), IsEmpty());
}

TEST_F(LogExportPortal, AChooserThatBreaksIsAFailure) {
  PortalWorld desktop("whole");
  exportOverTheWindow();
  EXPECT_EQ(desktop.next(), askedOverTheWindow());

  desktop.tell("fail");

  EXPECT_EQ(outcomes_.next(), kNoMenu);
}

TEST_F(LogExportPortal, WithoutAViewAsksOverNoWindow) {
  PortalWorld desktop("whole");

  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_EQ(desktop.next(), "asked - file://" + log());
}

TEST_F(LogExportPortal, OfAFileThatIsMissingShowsNothingAndLogsTheSame) {
  PortalWorld desktop("whole");
  std::filesystem::remove(log());

  exportOverTheWindow();

  EXPECT_EQ(outcomes_.next(), "failed: No such file or directory: " + log());
  EXPECT_THAT(logger_->take(), ElementsAre("Log file is created"));
  EXPECT_THAT(desktop.end(), IsEmpty());
}

TEST_F(LogExportPortal, WithoutAChooserShowsNothingAndLogsTheSame) {
  PortalWorld desktop("no-chooser");

  exportOverTheWindow();

  EXPECT_EQ(outcomes_.next(), kNoMenu);
  EXPECT_THAT(logger_->take(), ElementsAre("Log file is created"));
}

TEST_F(LogExportPortal, WithoutAPortalShowsNothingAndLogsTheSame) {
  PortalWorld desktop("no-portal");

  exportOverTheWindow();

  EXPECT_THAT(outcomes_.next(), StartsWith("failed: the desktop portal shows no menu: "));
  EXPECT_THAT(logger_->take(), ElementsAre("Log file is created"));
}

TEST_F(LogExportPortal, AMenuWhosePortalEndsIsAFailure) {
  PortalWorld desktop("whole");
  exportOverTheWindow();
  EXPECT_EQ(desktop.next(), askedOverTheWindow());

  desktop.tell("end portal");

  EXPECT_EQ(outcomes_.next(), "failed: the desktop portal is gone");
}

TEST_F(LogExportPortal, AMenuWhoseBusEndsIsAFailure) {
  PortalWorld desktop("whole");
  exportOverTheWindow();
  EXPECT_EQ(desktop.next(), askedOverTheWindow());

  desktop.tell("end bus");

  EXPECT_EQ(outcomes_.next(), "failed: the session bus is gone");
}

}  // namespace
}  // namespace tavlo::test
