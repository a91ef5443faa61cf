// Open-in menus of the real desktop portal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/DesktopApplication.h"
#include "platform/linux/MainLoop.h"
#include "tests/platform/linux/DesktopApplicationFixture.h"
#include "tests/support/PortalWorld.h"

namespace tavlo::test {
namespace {

using linux_platform::DesktopApplication;
using testing::StartsWith;
using namespace std::chrono_literals;

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

}  // namespace
}  // namespace tavlo::test
