#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/DesktopApplication.h"
#include "platform/linux/MainLoop.h"
#include "tests/platform/linux/AwaitedOutcomes.h"
#include "tests/support/CaseName.h"
#include "tests/support/PortalWorld.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::DesktopApplication;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr auto kForEver = 60s;

class Window final : public platform::View {
 public:
  explicit Window(Text handle) : handle_(std::move(handle)) {}
  Text windowHandle() const override { return handle_; }

 private:
  const Text handle_;
};

class DesktopApplicationTest : public testing::Test {
 protected:
  DesktopApplicationTest() {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::unsetenv("XDG_RUNTIME_DIR");
    writeFile(folder_ / "log.txt", "a line\n");
  }

  [[nodiscard]] std::string url(const std::string& name = "log.txt") const { return "file://" + at(name); }
  [[nodiscard]] std::string at(const std::string& name) const { return (folder_ / name).string(); }

  [[nodiscard]] auto controller(const std::string& url, std::chrono::milliseconds patience = kForEver) const {
    return DesktopApplication(outcomes_.handler(), patience).interactionControllerWithURL(url);
  }
  static bool present(platform::DocumentInteractionController& controller, Text window = std::nullopt) {
    return controller.presentOpenInMenuFromRect({}, std::make_shared<Window>(std::move(window)), true);
  }

  TemporaryFolder folder_;
  AwaitedOutcomes outcomes_;
};

TEST_F(DesktopApplicationTest, OnlyAUrlOfAFileOnThisMachineIsShown) {
  for (const std::string url : {"", "http://host/log.txt", "file://host/log.txt", "file:log.txt", "/log.txt",
                                "file:///a b", "file:///a%00b", "file://", "File Manager://"}) {
    EXPECT_FALSE(present(*controller(url))) << url;
    EXPECT_EQ(outcomes_.next(), "failed: no file of this machine has the URL " + url);
  }
}

TEST_F(DesktopApplicationTest, OnlyARegularFileIsShown) {
  ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);

  EXPECT_FALSE(present(*controller(url("gone"))));
  EXPECT_EQ(outcomes_.next(), "failed: No such file or directory: " + at("gone"));
  EXPECT_FALSE(present(*controller(url("fifo"))));
  EXPECT_EQ(outcomes_.next(), "failed: Invalid argument: " + at("fifo"));
  EXPECT_FALSE(present(*controller("file://" + folder_.path().string())));
  EXPECT_EQ(outcomes_.next(), "failed: Invalid argument: " + folder_.path().string());
}

TEST_F(DesktopApplicationTest, WithoutASessionBusNothingIsShown) {
  EXPECT_FALSE(present(*controller(url())));
  EXPECT_EQ(outcomes_.next(),
            "failed: there is no session bus: DBUS_SESSION_BUS_ADDRESS and XDG_RUNTIME_DIR are not set");

  ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
  EXPECT_FALSE(present(*controller(url())));
  EXPECT_THAT(outcomes_.next(), StartsWith("failed: the session bus cannot be reached: "));

  ::setenv("DBUS_SESSION_BUS_ADDRESS", "no address", 1);
  EXPECT_FALSE(present(*controller(url())));
  EXPECT_THAT(outcomes_.next(), StartsWith("failed: the session bus cannot be reached: "));
}

TEST_F(DesktopApplicationTest, WithoutAHandlerNobodyIsTold) {
  EXPECT_FALSE(present(*DesktopApplication(nullptr).interactionControllerWithURL(url())));
}

TEST_F(DesktopApplicationTest, ABusThatDoesNotAnswerIsNotWaitedForWithoutEnd) {
  const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  at("bus").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(listening, 1), 0);
  ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);

  EXPECT_FALSE(present(*controller(url(), 100ms)));

  EXPECT_EQ(outcomes_.next(), "failed: the desktop portal does not answer");
  ::close(listening);
}

TEST_F(DesktopApplicationTest, OnTheLoopAnAnswerIsAnOutcome) {
  const auto one = controller(url());

  linux_platform::MainLoop::post([one] { EXPECT_TRUE(present(*one)); });

  EXPECT_THAT(outcomes_.next(), StartsWith("failed: there is no session bus"));
}

TEST_F(DesktopApplicationTest, EachOfManyThreadsIsToldOnceThatThereIsNoBus) {
  constexpr int kThreads = 8;
  constexpr int kEach = 50;
  const auto shared = controller(url());
  std::vector<std::thread> threads;

  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int menu = 0; menu < kEach; ++menu) EXPECT_FALSE(present(menu % 2 == 0 ? *shared : *controller(url())));
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(outcomes_.left(), std::size_t{kThreads * kEach});
}

class OnADesktop : public DesktopApplicationTest {
 protected:
  void SetUp() override {
    if (!PortalWorld::isInstalled())
      GTEST_SKIP() << "needs dbus-daemon, xdg-desktop-portal, python3-dbus and python3-gi";
  }
};

TEST_F(OnADesktop, APortalThatDoesNotAnswerIsNotWaitedForWithoutEnd) {
  PortalWorld desktop("deaf");

  EXPECT_FALSE(present(*controller(url(), 500ms)));

  EXPECT_EQ(outcomes_.next(), "failed: the desktop portal does not answer");
}

TEST_F(OnADesktop, APresentationThatIsTakenBackBeforeItsAnswerIsNotShown) {
  PortalWorld desktop("deaf");
  auto one = controller(url());
  std::thread presenting([&] { EXPECT_FALSE(present(*one)); });
  EXPECT_THAT(desktop.next(), StartsWith("asked - "));

  linux_platform::MainLoop::post([one] { EXPECT_TRUE(present(*one)); });
  presenting.join();

  EXPECT_EQ(outcomes_.next(), "failed: the menu was taken back");
}

TEST_F(OnADesktop, TheFileIsHandedOverForReadingOnlyAndTheUserIsToChoose) {
  PortalWorld desktop("deaf");

  EXPECT_FALSE(present(*controller("FILE://localhost" + at("log%2Etxt"), 500ms), "wayland:handle"));

  EXPECT_EQ(desktop.next(), "asked wayland:handle " + at("log.txt") + " True ask");
}

TEST_F(OnADesktop, OnlyAWindowThatThePortalCanKnowIsPassedOn) {
  PortalWorld desktop("whole");
  const std::vector<std::pair<Text, std::string>> windows{{"x11:2a", "x11:2a"}, {"wayland:a-B_9", "wayland:a-B_9"},
                                                          {std::nullopt, "-"},  {"", "-"},
                                                          {"win32:2a", "-"},    {"x11:2a b", "-"},
                                                          {"x11:\xff", "-"},    {std::string("x11:\0", 5), "-"}};

  for (const auto& [handle, passedOn] : windows) {
    const auto one = controller(url());
    EXPECT_TRUE(present(*one, handle));
    EXPECT_EQ(desktop.next(), "asked " + passedOn + " " + url());
    desktop.tell("cancel");
    EXPECT_EQ(outcomes_.next(), "cancelled: no app was chosen");
  }
}

TEST_F(OnADesktop, AMenuThatEndsWithItsControllerIsTakenBack) {
  PortalWorld desktop("whole");
  auto one = controller(url());
  EXPECT_TRUE(present(*one));
  EXPECT_EQ(desktop.next(), "asked - " + url());

  one.reset();

  EXPECT_EQ(desktop.next(), "closed");
  EXPECT_EQ(outcomes_.next(), "cancelled: the menu was taken back");
}

TEST_F(OnADesktop, AHandlerMayPresentAgain) {
  PortalWorld desktop("whole");
  std::shared_ptr<platform::DocumentInteractionController> again;
  const auto told = outcomes_.handler();
  const auto one = DesktopApplication([&](linux_platform::MenuOutcome outcome, std::string_view explanation) {
                     if (!again) {
                       again = controller(url());
                       EXPECT_TRUE(present(*again));
                     }
                     told(outcome, explanation);
                   }).interactionControllerWithURL(url());

  EXPECT_TRUE(present(*one));
  EXPECT_EQ(desktop.next(), "asked - " + url());
  desktop.tell("cancel");
  EXPECT_EQ(outcomes_.next(), "cancelled: no app was chosen");

  EXPECT_EQ(desktop.next(), "asked - " + url());
  desktop.tell("choose");
  EXPECT_EQ(desktop.next(), "opened " + at("log.txt"));
  EXPECT_EQ(outcomes_.next(), "opened");
}

TEST_F(OnADesktop, WhatAHandlerThrowsIsDropped) {
  PortalWorld desktop("whole");
  const auto told = outcomes_.handler();
  const auto one = DesktopApplication([&](linux_platform::MenuOutcome outcome, std::string_view explanation) {
                     told(outcome, explanation);
                     throw std::runtime_error("of the host");
                   }).interactionControllerWithURL(url());

  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(present(*one));
    EXPECT_EQ(desktop.next(), "asked - " + url());
    desktop.tell("cancel");
    EXPECT_EQ(outcomes_.next(), "cancelled: no app was chosen");
  }
}

TEST_F(OnADesktop, EachOfManyThreadsIsToldOnceWhenItsMenuGoesWithItsController) {
  PortalWorld desktop("whole");
  constexpr int kThreads = 8;
  std::vector<std::thread> threads;

  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([this] {
      for (int menu = 0; menu < 5; ++menu) EXPECT_TRUE(present(*controller(url())));
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (int i = 0; i < kThreads * 5; ++i) EXPECT_EQ(outcomes_.next(), "cancelled: the menu was taken back");
  EXPECT_EQ(outcomes_.left(), 0U);
}

TEST_F(OnADesktop, MenusLeaveNoConnectionsBehind) {
  PortalWorld desktop("whole");
  constexpr int kMenus = 60;
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  const auto before = descriptors();

  for (int menu = 0; menu < kMenus; ++menu) {
    const auto one = controller(url());
    EXPECT_TRUE(present(*one));
    EXPECT_EQ(desktop.next(), "asked - " + url());
    desktop.tell("cancel");
    EXPECT_EQ(outcomes_.next(), "cancelled: no app was chosen");
  }

  EXPECT_LT(descriptors(), before + kMenus / 2);  // those of the last ones may still be closing
}

TEST_F(OnADesktop, AProcessMayEndWithAMenuUp) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  ::setenv("TMPDIR", folder_.path().c_str(), 1);  // what the process leaves goes with this one

  EXPECT_EXIT(
      {
        PortalWorld desktop("whole");
        const auto one = controller(url());
        if (!present(*one) || desktop.next() != "asked - " + url()) std::_Exit(3);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

struct Probe {
  const char* name;
  std::string url;
  bool canBeOpened;

  friend std::ostream& operator<<(std::ostream& out, const Probe& probe) { return out << probe.url; }
};

class CanOpenURLTest : public testing::TestWithParam<Probe> {};

// GLib keeps the folders that it first sees.
void haveAppForTavloTest() {
  static const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "applications");
  writeFile(folder / "applications/test-app.desktop", "[Desktop Entry]\nType=Application\nName=Test\nExec=true %u\n");
  writeFile(folder / "applications/mimeinfo.cache", "[MIME Cache]\nx-scheme-handler/tavlo-test=test-app.desktop;\n");
  for (const char* const name : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) {
    ::setenv(name, folder.path().c_str(), 1);
  }
}

TEST_P(CanOpenURLTest, IsTrueForASchemeThatAnInstalledAppHandles) {
  haveAppForTavloTest();

  EXPECT_EQ(DesktopApplication(nullptr).canOpenURL(GetParam().url), GetParam().canBeOpened);
}

INSTANTIATE_TEST_SUITE_P(
    All, CanOpenURLTest,
    testing::Values(Probe{"Handled", "tavlo-test://open?x=1", true}, Probe{"InCapitals", "TAVLO-Test:", true},
                    Probe{"OfNobody", "tavlo-other://open", false}, Probe{"WithABlank", "tavlo-test://a b", false},
                    Probe{"BlankInTheScheme", "File Manager://", false}, Probe{"WithoutAScheme", "//host/x", false},
                    Probe{"Empty", "", false}, Probe{"NotAscii", "tavlo-test://\xc3\xa4", false},
                    Probe{"WithANul", std::string("tavlo-test://\0", 14), false}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
