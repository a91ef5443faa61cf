#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/MainLoop.h"

namespace tavlo::test {
namespace {

using linux_platform::MainLoop;
using testing::ElementsAre;

void runOnLoop(const std::function<void()>& task) {
  std::latch done(1);
  ASSERT_TRUE(MainLoop::post([&] {
    task();
    done.count_down();
  }));
  done.wait();
}

TEST(MainLoopThread, RunsTasksInTheOrderInWhichTheyWerePosted) {
  std::vector<std::string> order;

  for (const char* name : {"a", "b", "c"}) MainLoop::post([&order, name] { order.emplace_back(name); });
  runOnLoop([] {});

  EXPECT_THAT(order, ElementsAre("a", "b", "c"));
}

TEST(MainLoopThread, ATaskThatThrowsEndsAlone) {
  MainLoop::post([] { throw std::runtime_error("of the task"); });
  bool ran = false;

  runOnLoop([&] { ran = true; });

  EXPECT_TRUE(ran);
}

TEST(MainLoopThread, EveryTaskRunsOnTheOneThread) {
  std::vector<std::thread::id> threads(2);

  for (auto& each : threads) {
    runOnLoop([&] {
      each = std::this_thread::get_id();
      EXPECT_TRUE(MainLoop::isCurrent());
    });
  }

  EXPECT_EQ(threads[0], threads[1]);
  EXPECT_NE(threads[0], std::this_thread::get_id());
  EXPECT_FALSE(MainLoop::isCurrent());
}

TEST(MainLoopThread, WhatATaskStartsIsAnsweredOnTheSameThreadThroughItsOwnContext) {
  std::latch answered(1);
  bool onLoop = false;
  auto answer = [&] {
    onLoop = MainLoop::isCurrent();
    answered.count_down();
  };
  using Answer = decltype(answer);

  runOnLoop([&] {
    EXPECT_NE(g_main_context_get_thread_default(), nullptr);
    GSource* const idle = g_idle_source_new();
    g_source_set_callback(
        idle,
        [](gpointer data) -> gboolean {
          (*static_cast<Answer*>(data))();
          return G_SOURCE_REMOVE;
        },
        &answer, nullptr);
    g_source_attach(idle, g_main_context_get_thread_default());
    g_source_unref(idle);
  });
  answered.wait();

  EXPECT_TRUE(onLoop);
}

TEST(MainLoopThread, ThousandsOfTasksOfManyThreadsAllRun) {
  constexpr int kThreads = 8;
  constexpr int kTasks = 2000;
  int ran = 0;  // touched on the loop only
  std::latch done(kThreads * kTasks);

  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int task = 0; task < kTasks; ++task) {
        MainLoop::post([&] {
          ++ran;
          done.count_down();
        });
      }
    });
  }
  done.wait();

  EXPECT_EQ(ran, kThreads * kTasks);
}

TEST(MainLoopThread, ATaskMayPostATask) {
  std::latch done(1);

  MainLoop::post([&] { MainLoop::post([&] { done.count_down(); }); });

  done.wait();
}

TEST(MainLoopThread, WhatATaskHoldsIsGoneBeforeTheNextRuns) {
  auto held = std::make_shared<int>(1);
  const std::weak_ptr<int> watch = held;
  bool gone = false;

  MainLoop::post([held = std::move(held)] {});
  runOnLoop([&] { gone = watch.expired(); });

  EXPECT_TRUE(gone);
}

TEST(MainLoopThread, TakesNoSignalFromOutsideButThoseOfAFault) {
  sigset_t mask{};

  runOnLoop([&] { pthread_sigmask(SIG_BLOCK, nullptr, &mask); });

  for (const int outside : {SIGTERM, SIGINT, SIGCHLD, SIGALRM, SIGUSR1, SIGHUP}) {
    EXPECT_EQ(sigismember(&mask, outside), 1) << outside;
  }
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) EXPECT_EQ(sigismember(&mask, fault), 0) << fault;
}

TEST(MainLoopThread, AnEmptyTaskIsNothingToDo) { EXPECT_FALSE(MainLoop::post(nullptr)); }

TEST(MainLoopThread, AForkedChildHasNoLoop) {
  runOnLoop([] {});

  const pid_t child = ::fork();
  if (child == 0) ::_exit(MainLoop::post([] {}) ? 1 : 0);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);

  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace tavlo::test
