// The slots of the bundle, the image and the controller under many threads: each object is destroyed exactly once,
// whoever holds one keeps it alive, and a destructor may come back to the same slot.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "TavloUtility.h"
#include "tests/support/ResourcesPlatform.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo {
namespace {

using platform::DocumentInteractionController;
using platform::Image;

constexpr int kThreads = 64;

class ResourceSlotsThread : public testing::Test {
 protected:
  ResourceSlotsThread() { Logger::install(nullptr); }

  test::ResourcesWorld world_;
};

TEST_F(ResourceSlotsThread, FirstLoadsAtOnceLeaveOneBundle) {
  test::onThreadsAtOnce(kThreads, [](int) { ASSERT_NE(TavloUtility::frameworkBundle(), nullptr); });

  const int opened = world_->bundlesMade.made();
  EXPECT_GE(opened, 1);
  EXPECT_LE(opened, kThreads);
  EXPECT_EQ(world_->bundlesMade.alive(), 1);
  static_cast<void>(world_->takeCalls());
  static_cast<void>(TavloUtility::frameworkBundle());
  EXPECT_EQ(world_->bundlesMade.made(), opened);
}

TEST_F(ResourceSlotsThread, EveryImageIsDestroyedOnceAndIsTheOneThatWasAskedFor) {
  const int loads = test::scaled(1'000);
  std::atomic<int> readsAtTheEnd = 0;
  world_->onImageGone = [&] {
    if (processSlot<const Image>().load()) ++readsAtTheEnd;
  };

  test::onThreadsAtOnce(kThreads, [&](int thread) {
    for (int i = 0; i < loads; ++i) {
      const auto image = thread % 2 == 0 ? TavloUtility::getVolumeImage() : TavloUtility::getMuteImage();
      ASSERT_EQ(image->pixels()[0], thread % 2 == 0 ? 'v' : 'm');
    }
    static_cast<void>(world_->takeCalls());
  });

  EXPECT_EQ(world_->imagesMade.made(), kThreads * loads);
  EXPECT_EQ(world_->imagesMade.alive(), 1);
  EXPECT_EQ(readsAtTheEnd, kThreads * loads - 1);
}

// Not for ever: only the first end of all comes back.
TEST_F(ResourceSlotsThread, TheEndOfAnImageMayLoadAnother) {
  std::atomic<bool> came = false;
  world_->onImageGone = [&] {
    if (!came.exchange(true)) static_cast<void>(TavloUtility::getMuteImage());
  };

  test::onThreadsAtOnce(kThreads, [](int) { static_cast<void>(TavloUtility::getVolumeImage()); });

  EXPECT_EQ(world_->imagesMade.made(), kThreads + 1);
  EXPECT_EQ(world_->imagesMade.alive(), 1);
}

TEST_F(ResourceSlotsThread, EveryControllerIsDestroyedOnce) {
  const int exports = test::scaled(1'000);
  std::atomic<int> readsAtTheEnd = 0;
  world_->onControllerGone = [&] {
    if (processSlot<DocumentInteractionController>().load()) ++readsAtTheEnd;
  };

  test::onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < exports; ++i) TavloUtility::getExportTavloSDKLog(nullptr);
    static_cast<void>(world_->takeCalls());
  });

  EXPECT_EQ(world_->controllersMade.made(), kThreads * exports);
  EXPECT_EQ(world_->controllersMade.alive(), 1);
  EXPECT_EQ(readsAtTheEnd, kThreads * exports - 1);
}

}  // namespace
}  // namespace tavlo
