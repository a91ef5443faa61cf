// The slots of the bundle, the image and the controller under many threads: each object is destroyed exactly once,
// whoever holds one keeps it alive, and a destructor may come back to the same slot.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "TavloUtility.h"
#include "tests/support/ResourcesPlatform.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo {
namespace {

using platform::DocumentInteractionController;
using platform::Image;

constexpr int kThreads = 64;

std::string told(const char* what, int replacements) {
  return std::to_string(kThreads) + " threads x " + std::to_string(replacements) + " " + what + ", one left";
}

class ResourceSlotsThread : public testing::Test {
 protected:
  // What a destructor does once, so that it does not go on for ever.
  [[nodiscard]] std::function<void()> once(std::function<void()> action) {
    return [this, action = std::move(action)] {
      if (!came_.exchange(true)) action();
    };
  }

  test::ResourcesWorld world_;

 private:
  std::atomic<bool> came_ = false;
};

TEST_F(ResourceSlotsThread, FirstLoadsAtOnceLeaveOneBundleAndLaterOnesFindItLoaded) {
  const int rounds = test::figure(20, 1'000);
  int most = 0;
  std::barrier allSeekIt(kThreads);
  world_->onBundleSought = [&] { allSeekIt.arrive_and_wait(); };

  for (int round = 0; round < rounds; ++round) {
    processSlot<platform::Bundle>().store(nullptr);
    const int before = world_->bundlesMade.made();
    test::onThreadsAtOnce(kThreads, [](int) { ASSERT_NE(TavloUtility::frameworkBundle(), nullptr); });

    const int opened = world_->bundlesMade.made() - before;
    const auto calls = world_->takeCalls();
    ASSERT_GE(opened, 1);
    ASSERT_LE(opened, kThreads);
    ASSERT_EQ(world_->bundlesMade.alive(), 1);
    ASSERT_EQ(std::count(calls.begin(), calls.end(), "log:Loading framework budle once ..."), opened);
    ASSERT_EQ(std::count(calls.begin(), calls.end(), "log:Already Loaded framework bundle"), kThreads - opened);
    ASSERT_EQ(TavloUtility::frameworkBundle(), processSlot<platform::Bundle>().load());
    ASSERT_THAT(world_->takeCalls(), testing::ElementsAre("log:Already Loaded framework bundle"));
    most = std::max(most, opened);
    world_->onBundleSought = [] { std::this_thread::yield(); };
  }

  EXPECT_EQ(most, kThreads);  // in the first round
  test::reached("T11", std::to_string(rounds) + " first loads on 64 threads, at most " + std::to_string(most) +
                           " openings, one bundle left");
}

TEST_F(ResourceSlotsThread, EveryBundleIsDestroyedOnceAndLivesWhileItIsHeld) {
  const int replacements = test::figure(500, 10'000);
  std::atomic<int> ends = 0;
  world_->records = false;
  world_->onBundleGone = [&] {
    static_cast<void>(processSlot<platform::Bundle>().load());
    ++ends;
  };

  test::onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < replacements; ++i) {
      processSlot<platform::Bundle>().store(world_->bundles().bundleWithPath(test::ResourcesPlatform::kBundlePath));
      const auto held = TavloUtility::frameworkBundle();
      ASSERT_EQ(held->pathForResourceOfType("mute", "png"), "/app/TavloSDKResource.bundle/mute.png");
    }
  });

  EXPECT_EQ(world_->bundlesMade.made(), kThreads * replacements);
  EXPECT_EQ(world_->bundlesMade.alive(), 1);
  EXPECT_EQ(ends, kThreads * replacements - 1);
  test::reached("T11", told("replacements of the bundle", replacements));
}

TEST_F(ResourceSlotsThread, TheEndOfABundleMayOpenAnother) {
  // What it opens may be gone again before it has it: the other threads still empty the slot.
  world_->onBundleGone = once([] { static_cast<void>(TavloUtility::frameworkBundle()); });
  static_cast<void>(TavloUtility::frameworkBundle());

  test::onThreadsAtOnce(kThreads, [](int) { processSlot<platform::Bundle>().store(nullptr); });

  EXPECT_EQ(world_->bundlesMade.made(), 2);
}

TEST_F(ResourceSlotsThread, EveryImageIsDestroyedOnceAndIsTheOneThatWasAskedFor) {
  const int loads = test::figure(500, 10'000);
  std::atomic<int> readsAtTheEnd = 0;
  world_->records = false;
  world_->onImageGone = [&] {
    if (processSlot<const Image>().load()) ++readsAtTheEnd;
  };

  test::onThreadsAtOnce(kThreads, [&](int thread) {
    for (int i = 0; i < loads; ++i) {
      const auto image = thread % 2 == 0 ? TavloUtility::getVolumeImage() : TavloUtility::getMuteImage();
      ASSERT_EQ(image->pixels()[0], thread % 2 == 0 ? 'v' : 'm');
    }
  });

  EXPECT_EQ(world_->imagesMade.made(), kThreads * loads);
  EXPECT_EQ(world_->imagesMade.alive(), 1);
  EXPECT_EQ(readsAtTheEnd, kThreads * loads - 1);
  test::reached("T11", told("replacements of the image", loads));
}

TEST_F(ResourceSlotsThread, TheEndOfAnImageMayLoadAnother) {
  world_->onImageGone = once([] { static_cast<void>(TavloUtility::getMuteImage()); });

  test::onThreadsAtOnce(kThreads, [](int) { static_cast<void>(TavloUtility::getVolumeImage()); });

  EXPECT_EQ(world_->imagesMade.made(), kThreads + 1);
  EXPECT_EQ(world_->imagesMade.alive(), 1);
}

TEST_F(ResourceSlotsThread, EveryControllerIsDestroyedOnce) {
  const int exports = test::figure(500, 10'000);
  std::atomic<int> readsAtTheEnd = 0;
  world_->records = false;
  world_->onControllerGone = [&] {
    if (processSlot<DocumentInteractionController>().load()) ++readsAtTheEnd;
  };

  test::onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < exports; ++i) TavloUtility::getExportTavloSDKLog(nullptr);
  });

  EXPECT_EQ(world_->controllersMade.made(), kThreads * exports);
  EXPECT_EQ(world_->controllersMade.alive(), 1);
  EXPECT_EQ(readsAtTheEnd, kThreads * exports - 1);
  test::reached("T11", told("replacements of the controller", exports));
}

TEST_F(ResourceSlotsThread, TheEndOfAControllerMayExportAgain) {
  world_->onControllerGone = once([] { TavloUtility::getExportTavloSDKLog(nullptr); });

  test::onThreadsAtOnce(kThreads, [](int) { TavloUtility::getExportTavloSDKLog(nullptr); });

  EXPECT_EQ(world_->controllersMade.made(), kThreads + 1);
  EXPECT_EQ(world_->controllersMade.alive(), 1);
}

}  // namespace
}  // namespace tavlo
