#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <latch>
#include <limits>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/linux/WorkerQueue.h"
#include "tests/support/Gate.h"

namespace tavlo::test {
namespace {

using linux_platform::WorkerQueue;
using testing::ElementsAre;
using testing::IsEmpty;

// New threads of the process ask for nearly all addresses as their stack, so that none can be made.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    EXPECT_EQ(pthread_attr_setstacksize(&huge, std::numeric_limits<std::size_t>::max() / 64 * 63), 0);
    EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
    pthread_attr_destroy(&huge);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
  ~NoThreads() { pthread_setattr_default_np(&before_); }

 private:
  pthread_attr_t before_{};
};

// Texts in the order in which any thread adds them.
class Journal {
 public:
  void add(const std::string& line) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(line);
  }
  [[nodiscard]] std::vector<std::string> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

TEST(WorkerQueueThread, OneWorkerRunsTasksInTheOrderInWhichTheyCame) {
  WorkerQueue queue(1);
  Journal journal;
  std::latch done(3);

  for (const char* name : {"a", "b", "c"}) {
    queue.dispatchAsync([&journal, &done, name] {
      journal.add(name);
      done.count_down();
    });
  }
  done.wait();

  EXPECT_THAT(journal.lines(), ElementsAre("a", "b", "c"));
}

TEST(WorkerQueueThread, AsManyTasksRunAtOnceAsThereAreWorkersAndNoMore) {
  constexpr int kWorkers = 4;
  std::mutex mutex;
  std::set<pid_t> workers;
  std::latch together(kWorkers);
  std::latch done(100);
  WorkerQueue queue(kWorkers);  // goes first: a worker may be the last to leave `together`

  for (int i = 0; i < kWorkers; ++i) queue.dispatchAsync([&] { together.arrive_and_wait(); });
  together.wait();  // four at once, or it never ends
  for (int i = 0; i < 100; ++i) {
    queue.dispatchAsync([&] {
      {
        const std::lock_guard lock(mutex);
        workers.insert(::gettid());
      }
      done.count_down();
    });
  }
  done.wait();

  EXPECT_LE(workers.size(), kWorkers);
  EXPECT_FALSE(workers.contains(::gettid()));
}

TEST(WorkerQueueThread, AWorkerAtRestTakesTheNextTaskInPlaceOfANewOne) {
  WorkerQueue queue(4);
  std::set<pid_t> workers;

  for (int i = 0; i < 20; ++i) {
    std::latch done(1);
    queue.dispatchAsync([&] {
      workers.insert(::gettid());
      done.count_down();
    });
    done.wait();
  }

  EXPECT_LE(workers.size(), 2U);  // the first may not have come to rest before the second task
}

TEST(WorkerQueueThread, WorkersAreNiceAndDeafToSignalsFromOutside) {
  WorkerQueue queue(1);
  int niceness = 0;
  sigset_t mask{};
  std::latch done(1);

  queue.dispatchAsync([&] {
    niceness = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    done.count_down();
  });
  done.wait();

  EXPECT_EQ(niceness, 10);
  EXPECT_EQ(sigismember(&mask, SIGTERM), 1);
  EXPECT_EQ(sigismember(&mask, SIGPIPE), 1);
  EXPECT_EQ(sigismember(&mask, SIGSEGV), 0);
  sigset_t ours{};
  pthread_sigmask(SIG_SETMASK, nullptr, &ours);
  EXPECT_EQ(sigismember(&ours, SIGTERM), 0);
}

TEST(WorkerQueueThread, WhatATaskThrowsEndsThatTaskOnly) {
  WorkerQueue queue(1);
  std::latch done(1);

  queue.dispatchAsync([] { throw std::runtime_error("told to no one"); });
  queue.dispatchAsync([] { throw std::bad_alloc(); });
  queue.dispatchAsync([] { throw 7; });
  queue.dispatchAsync([&] { done.count_down(); });

  done.wait();
}

TEST(WorkerQueueThread, AnEmptyTaskIsNothingToDo) {
  WorkerQueue queue(1);
  std::latch done(1);

  queue.dispatchAsync(nullptr);
  queue.dispatchAsync([&] { done.count_down(); });

  done.wait();
}

TEST(WorkerQueueThread, StoppingDropsWhatWaitsCancelsWhatRunsAndWaitsForIt) {
  Journal journal;
  Gate cancelled;
  WorkerQueue queue(1, [&] {
    journal.add("cancelled");
    cancelled.open();
  });
  std::latch running(1);
  queue.dispatchAsync([&] {
    running.count_down();
    cancelled.wait();
    journal.add("ended");
  });
  queue.dispatchAsync([&] { journal.add("never"); });
  running.wait();

  queue.stop();
  journal.add("stopped");
  queue.stop();
  queue.dispatchAsync([&] { journal.add("never"); });
  queue.stop();

  EXPECT_THAT(journal.lines(), ElementsAre("cancelled", "ended", "stopped"));
}

TEST(WorkerQueueThread, ADroppedTaskMayUseTheQueueAsItIsDestroyed) {
  auto queue = std::make_shared<WorkerQueue>(1);
  std::latch running(1);
  Gate gate;
  queue->dispatchAsync([&] {
    running.count_down();
    gate.wait();
  });
  running.wait();
  auto last = std::shared_ptr<void>(nullptr, [queue](void*) {
    queue->dispatchAsync([] {});
    queue->stop();
  });
  queue->dispatchAsync([last] {});
  last.reset();

  std::thread opener([&] { gate.open(); });
  queue->stop();
  opener.join();

  EXPECT_EQ(queue.use_count(), 1);
}

TEST(WorkerQueueThread, StoppedByItsOwnWorkerItLetsTheOthersGo) {
  auto queue = std::make_unique<WorkerQueue>(2);
  Gate othersRun;
  Gate gone;
  std::latch ended(1);
  queue->dispatchAsync([&] {
    othersRun.open();
    gone.wait();
    ended.count_down();
  });
  othersRun.wait();

  queue->dispatchAsync([&] {
    queue.reset();
    gone.open();
  });

  ended.wait();
}

TEST(WorkerQueueThread, ManyQueuesMayBeStoppedByTheirOwnWorkers) {
  for (int i = 0; i < 200; ++i) {
    std::latch gone(1);
    auto queue = std::make_shared<WorkerQueue>(1);
    WorkerQueue& it = *queue;
    it.dispatchAsync([queue = std::move(queue), &gone]() mutable {
      queue.reset();
      gone.count_down();
    });
    gone.wait();
  }
}

TEST(WorkerQueueThread, AnyNumberOfThreadsMayStopAndDispatchAtOnce) {
  for (int round = 0; round < 50; ++round) {
    WorkerQueue queue(3);
    std::latch start(8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
      threads.emplace_back([&, i] {
        start.arrive_and_wait();
        for (int k = 0; k < 20; ++k) queue.dispatchAsync([held = std::make_shared<int>(k)] {});
        if (i % 2 == 0) queue.stop();
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
}

TEST(WorkerQueueThread, WithoutAThreadForTheFirstWorkerATaskIsDropped) {
  WorkerQueue queue(2);
  Journal journal;
  auto held = std::make_shared<int>(0);

  {
    const NoThreads none;
    queue.dispatchAsync([&journal, held] { journal.add("never"); });
  }
  EXPECT_EQ(held.use_count(), 1);
  std::latch done(1);
  queue.dispatchAsync([&] { done.count_down(); });
  done.wait();

  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST(WorkerQueueThread, WithoutAThreadForAnotherWorkerATaskWaitsForThoseThereAre) {
  WorkerQueue queue(2);
  std::latch running(1);
  Gate gate;
  std::latch done(1);
  queue.dispatchAsync([&] {
    running.count_down();
    gate.wait();
  });
  running.wait();

  {
    const NoThreads none;
    queue.dispatchAsync([&] { done.count_down(); });
  }
  gate.open();

  done.wait();
}

}  // namespace
}  // namespace tavlo::test
