#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <thread>
#include <vector>

#include "platform/linux/StandardErrorConsole.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::StandardErrorConsole;
using testing::ElementsAre;

// Standard error led somewhere else for as long as this object lives.
class LedAway {
 public:
  explicit LedAway(int to) : before_(::dup(STDERR_FILENO)) { ::dup2(to, STDERR_FILENO); }
  LedAway(const LedAway&) = delete;
  LedAway& operator=(const LedAway&) = delete;
  ~LedAway() {
    ::dup2(before_, STDERR_FILENO);
    ::close(before_);
  }

 private:
  int before_;
};

class Console : public testing::Test {
 protected:
  // What `work` writes to standard error.
  template <class Work>
  std::string written(Work work) {
    const int fd = ::open((folder_ / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
    {
      const LedAway led(fd);
      work();
    }
    ::close(fd);
    return readFile(folder_ / "err");
  }

  TemporaryFolder folder_;
  FaultySyscalls syscalls_;
  StandardErrorConsole console_{syscalls_};
};

TEST_F(Console, AMessageAndItsNewlineGoOutInOneWrite) {
  EXPECT_EQ(written([&] { console_.log("a  b\t%s"); }), "a  b\t%s\n");
  EXPECT_THAT(syscalls_.calls(), ElementsAre("write ?"));
}

TEST_F(Console, AnEmptyMessageIsALine) {
  EXPECT_EQ(written([&] { console_.log(""); }), "\n");
}

TEST_F(Console, AnInterruptedAndAShortWriteLoseNothing) {
  syscalls_.setHook(failing("write", EINTR));
  syscalls_.shortenOnce(3);

  EXPECT_EQ(written([&] { console_.log("message"); }), "message\n");
}

TEST_F(Console, AnErrorIsIgnoredAndTheNextLineGoesOut) {
  syscalls_.setHook(failing("write", ENOSPC));

  EXPECT_EQ(written([&] {
              console_.log("lost");
              console_.log("kept");
            }),
            "kept\n");
}

TEST_F(Console, LinesOfManyThreadsNeverMix) {
  constexpr int kThreads = 8;
  constexpr int kLines = 50;
  const auto line = [](int thread) { return std::string(300, static_cast<char>('a' + thread)); };

  auto lines = splitLines(written([&] {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&, thread] {
        for (int i = 0; i < kLines; ++i) console_.log(line(thread));
      });
    }
    for (std::thread& thread : threads) thread.join();
  }));

  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kThreads * kLines));
  for (int thread = 0; thread < kThreads; ++thread) {
    EXPECT_EQ(std::count(lines.begin(), lines.end(), line(thread)), kLines) << thread;
  }
}

class BrokenPipe : public testing::Test {
 protected:
  BrokenPipe() {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    pipe_ = ends[1];
    std::signal(SIGPIPE, SIG_DFL);
  }
  ~BrokenPipe() override { ::close(pipe_); }

  int pipe_ = -1;
  StandardErrorConsole console_;
};

TEST_F(BrokenPipe, DoesNotEndTheProcessAndLeavesNoSignalBehind) {
  {
    const LedAway led(pipe_);
    console_.log("lost");
  }

  sigset_t waiting;
  sigset_t blocked;
  ASSERT_EQ(::sigpending(&waiting), 0);
  ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, nullptr, &blocked), 0);
  EXPECT_EQ(::sigismember(&waiting, SIGPIPE), 0);
  EXPECT_EQ(::sigismember(&blocked, SIGPIPE), 0);
}

TEST_F(BrokenPipe, KeepsASignalThatWasWaitingBefore) {
  sigset_t pipe;
  ::sigemptyset(&pipe);
  ::sigaddset(&pipe, SIGPIPE);
  ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &pipe, nullptr), 0);
  ASSERT_EQ(::raise(SIGPIPE), 0);
  {
    const LedAway led(pipe_);
    console_.log("lost");
  }

  sigset_t waiting;
  ASSERT_EQ(::sigpending(&waiting), 0);
  EXPECT_EQ(::sigismember(&waiting, SIGPIPE), 1);

  const timespec atOnce{};
  EXPECT_EQ(::sigtimedwait(&pipe, nullptr, &atOnce), SIGPIPE);
  ASSERT_EQ(::pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr), 0);
}

}  // namespace
}  // namespace tavlo::test
