// A position for which there is no memory, at every place where the thread that asks for it asks for some. The operator
// new is this whole program's.
#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <new>
#include <optional>
#include <semaphore>
#include <thread>

#include "platform/linux/MainLoop.h"
#include "tests/integration/DesktopFixture.h"
#include "tests/support/GeoClueWorld.h"

namespace {

constexpr int kPlenty = -1;
thread_local int allocationsLeft = kPlenty;
thread_local bool hasFailed = false;

}  // namespace

// None is inlined, or the compiler takes malloc and delete, or new and free, for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (allocationsLeft == 0) {
    hasFailed = true;
    throw std::bad_alloc();
  }
  if (allocationsLeft != kPlenty) --allocationsLeft;
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace tavlo::test {
namespace {

using linux_platform::MainLoop;
using platform::Location;

// Of this thread, from here on.
void leave(int allocations) {
  hasFailed = false;
  allocationsLeft = allocations;
}

// Whether memory ran out, which it does no more.
bool restore() {
  allocationsLeft = kPlenty;
  return hasFailed;
}

void leaveToTheLoop(int allocations) {
  ASSERT_TRUE(MainLoop::post([=] { leave(allocations); }));
}

bool restoreTheLoop() {
  std::promise<bool> failed;
  EXPECT_TRUE(MainLoop::post([&] { failed.set_value(restore()); }));
  return failed.get_future().get();
}

// A request for permission and one for a fix, whose answers need no memory.
class Requests {
 public:
  void ask(platform::LocationServices& services) {
    services.requestAuthorization([this](std::int32_t status) {
      status_ = status;
      ++statuses_;
      answered_.release();
    });
    services.requestLocation([this](const std::optional<Location>& fix) {
      hasFix_ = fix.has_value();
      ++fixes_;
      answered_.release();
    });
  }

  void expectNothingFound() {
    answered_.acquire();
    answered_.acquire();
    EXPECT_EQ(status_, 0);
    EXPECT_FALSE(hasFix_);
  }
  void expectNoFurtherAnswer() {
    EXPECT_EQ(statuses_, 1);
    EXPECT_EQ(fixes_, 1);
  }

 private:
  std::counting_semaphore<8> answered_{0};
  std::atomic<std::int32_t> status_ = -1;
  std::atomic<bool> hasFix_ = true;
  std::atomic<int> statuses_ = 0;
  std::atomic<int> fixes_ = 0;
};

class LocationOutOfMemoryThread : public testing::Test {
 protected:
  void waitForStatus(std::int32_t status) {
    while (desktop_.services().authorizationStatus() != status) std::this_thread::yield();
  }

  GeoClueWorld world_;
  Desktop desktop_;
};

TEST_F(LocationOutOfMemoryThread, OfTheLoopLeavesNoRequestWithoutItsOneAnswer) {
  int failures = 0;
  for (bool failed = true; failed; ++failures) {
    Requests requests;
    leaveToTheLoop(failures);

    requests.ask(desktop_.services());

    requests.expectNothingFound();
    failed = restoreTheLoop();
    EXPECT_EQ(desktop_.authorize(), 0) << failures;  // answered after whatever else there is
    requests.expectNoFurtherAnswer();
  }

  EXPECT_GT(failures, 5);
}

TEST_F(LocationOutOfMemoryThread, OfTheCallerIsThrownOrAnswered) {
  int failures = 0;
  for (bool failed = true; failed; ++failures) {
    std::atomic<int> answers = 0;
    bool thrown = false;
    platform::LocationServices::StatusHandler handler = [&](std::int32_t status) { answers += status == 0 ? 1 : 100; };

    leave(failures);
    try {
      desktop_.services().requestAuthorization(std::move(handler));
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    failed = restore();

    while (!thrown && answers == 0) std::this_thread::yield();
    EXPECT_EQ(desktop_.authorize(), 0) << failures;
    EXPECT_EQ(answers, thrown ? 0 : 1) << failures;
  }

  EXPECT_GT(failures, 2);
}

TEST_F(LocationOutOfMemoryThread, WhenAFixComesEndsThePermissionAndNotTheProcess) {
  world_.run("daemon");
  world_.run("agent 8");
  ASSERT_EQ(desktop_.authorize(), 3);
  leaveToTheLoop(0);

  world_.run("at 2836.8340,N,07712.5400,E");
  waitForStatus(0);

  EXPECT_TRUE(restoreTheLoop());
  EXPECT_EQ(desktop_.authorize(), 3);
  EXPECT_NE(desktop_.fix(), std::nullopt);
}

}  // namespace
}  // namespace tavlo::test
