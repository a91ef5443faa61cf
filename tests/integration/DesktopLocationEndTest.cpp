// What is left of the position when the desktop's daemon ends, and how many clients it sees.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

#include "TavloUtility.h"
#include "tests/integration/DesktopFixture.h"
#include "tests/support/GeoClueWorld.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::test {
namespace {

using platform::Location;
using testing::ElementsAre;

constexpr const char* kDelhi = "at 2836.8340,N,07712.5400,E";
constexpr const char* kSydney = "at 3352.1280,S,15112.5580,E";
constexpr double kLatitudeOfDelhi = 28.6139;
constexpr double kLatitudeOfSydney = -33.8688;

class DesktopLocationEndThread : public testing::Test {
 protected:
  DesktopLocationEndThread() {
    world_.run("daemon");
    world_.run("agent 8");
    world_.run(kDelhi);
  }

  void waitForStatus(std::int32_t status) {
    while (desktop_.services().authorizationStatus() != status) std::this_thread::yield();
  }
  void waitForLatitude(double latitude) {
    const auto isThere = [&] {
      const auto fix = desktop_.services().makeLocationManager()->location();
      return fix && std::abs(fix->coordinate.latitude - latitude) < 1e-9;
    };
    while (!isThere()) std::this_thread::yield();
  }

  GeoClueWorld world_;
  Desktop desktop_;
};

TEST_F(DesktopLocationEndThread, ADaemonThatIsKilledTakesThePermissionAndLeavesTheFix) {
  ASSERT_EQ(desktop_.authorize(), 3);
  waitForLatitude(kLatitudeOfDelhi);

  world_.run("kill daemon");
  waitForStatus(0);

  waitForLatitude(kLatitudeOfDelhi);
  EXPECT_EQ(desktop_.fix(), std::nullopt);
  EXPECT_FALSE(desktop_.services().locationServicesEnabled());
  TavloUtility::fetchCurrentLocation();
  EXPECT_THAT(desktop_.record().take(0), ElementsAre());
}

TEST_F(DesktopLocationEndThread, TheNextRequestStartsAnewAndTheNewFixReplacesTheOld) {
  ASSERT_EQ(desktop_.authorize(), 3);
  waitForLatitude(kLatitudeOfDelhi);
  world_.run("kill daemon");
  world_.run("kill agent");
  waitForStatus(0);

  world_.run(kSydney);
  world_.run("daemon");
  world_.run("agent 8");

  EXPECT_EQ(desktop_.authorize(), 3);
  EXPECT_NEAR(desktop_.fix().value().coordinate.latitude, kLatitudeOfSydney, 1e-9);
}

TEST_F(DesktopLocationEndThread, ABusThatIsKilledTakesThePermissionAndNotTheProcess) {
  ASSERT_EQ(desktop_.authorize(), 3);

  world_.run("kill bus");
  waitForStatus(0);

  EXPECT_FALSE(desktop_.services().locationServicesEnabled());
  EXPECT_EQ(desktop_.authorize(), 0);
}

TEST_F(DesktopLocationEndThread, ADaemonThatIsKilledWhileItDecidesAnswersEveryRequest) {
  world_.run("kill agent");
  world_.run("stop daemon");
  std::promise<std::int32_t> status;
  std::promise<std::optional<Location>> fix;

  desktop_.services().requestAuthorization([&](std::int32_t answer) { status.set_value(answer); });
  desktop_.services().requestLocation([&](const auto& answer) { fix.set_value(answer); });
  world_.run("kill daemon");

  EXPECT_EQ(status.get_future().get(), 0);
  EXPECT_EQ(fix.get_future().get(), std::nullopt);
  EXPECT_EQ(desktop_.services().authorizationStatus(), 0);
}

TEST_F(DesktopLocationEndThread, APermissionThatWasRefusedCanBeGivenLater) {
  world_.run("kill agent");
  world_.run("agent 0");
  ASSERT_EQ(desktop_.authorize(), 2);

  world_.run("kill agent");
  world_.run("agent 8");

  EXPECT_EQ(desktop_.authorize(), 3);
}

// The limit is for the decision alone; fixes go on to come when it is over.
TEST_F(DesktopLocationEndThread, APermissionOutlastsTheTimeThatTheDecisionMayTake) {
  constexpr std::chrono::seconds kLimit{3};
  Desktop hasty({.domain = "org.example.player", .location = {.authorization = kLimit}});
  ASSERT_EQ(hasty.authorize(), 3);
  const auto over = std::chrono::steady_clock::now() + kLimit;

  bool isOver = false;
  for (bool south = true; !isOver; south = !south) {
    isOver = std::chrono::steady_clock::now() > over;
    world_.run(south ? kSydney : kDelhi);
    waitForLatitude(south ? kLatitudeOfSydney : kLatitudeOfDelhi);
  }

  EXPECT_EQ(hasty.services().authorizationStatus(), 3);
}

TEST_F(DesktopLocationEndThread, AllPlatformsAndManagersShareOneClientAndItsFixes) {
  ASSERT_EQ(desktop_.authorize(), 3);
  waitForLatitude(kLatitudeOfDelhi);
  const std::string peers = world_.ask("peers");

  Desktop other({.domain = "org.example.other"});
  EXPECT_EQ(other.authorize(), 3);
  EXPECT_EQ(other.authorize(), 3);
  const auto manager = other.services().makeLocationManager();
  manager->startUpdatingLocation();

  EXPECT_NEAR(manager->location().value().coordinate.latitude, kLatitudeOfDelhi, 1e-9);
  EXPECT_EQ(world_.ask("peers"), peers);
}

TEST_F(DesktopLocationEndThread, AHandlerMayThrowAndMayAskAgain) {
  std::promise<std::int32_t> answer;

  desktop_.services().requestAuthorization([](std::int32_t) { throw std::runtime_error("of the handler"); });
  desktop_.services().requestAuthorization([&](std::int32_t) {
    EXPECT_TRUE(desktop_.services().locationServicesEnabled());
    desktop_.services().requestAuthorization([&](std::int32_t status) { answer.set_value(status); });
  });
  desktop_.services().requestAuthorization(nullptr);

  EXPECT_EQ(answer.get_future().get(), 3);
}

TEST_F(DesktopLocationEndThread, EightThreadsAskAnythingWhileFixesCome) {
  constexpr int kThreads = 8;
  const int rounds = scaled(200);
  std::atomic<int> answers = 0;

  onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < rounds; ++i) {
      desktop_.services().requestAuthorization([&](std::int32_t status) { answers += status == 3 ? 1 : 0; });
      desktop_.services().requestLocation([&](const auto& fix) { answers += fix ? 1 : 0; });
      static_cast<void>(desktop_.services().locationServicesEnabled());
      static_cast<void>(desktop_.services().makeLocationManager()->location());
      static_cast<void>(desktop_.services().authorizationStatus());
    }
  });

  while (answers != 2 * kThreads * rounds) std::this_thread::yield();  // every request is answered, with 3 and a fix
}

}  // namespace
}  // namespace tavlo::test
