// Many threads and several processes on one settings file.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <sstream>
#include <thread>

#include "tests/platform/linux/SettingsFixture.h"
#include "tests/support/Gate.h"

namespace tavlo::test {
namespace {

using linux_platform::SettingsStore;
using std::chrono::milliseconds;
using testing::IsEmpty;

// The lock file, locked by an open file of its own, as another process has it.
class OthersLock {
 public:
  explicit OthersLock(const std::filesystem::path& path) : fd_(::open(path.c_str(), O_RDWR | O_CREAT, 0600)) {
    EXPECT_EQ(::flock(fd_, LOCK_EX | LOCK_NB), 0);
  }
  OthersLock(const OthersLock&) = delete;
  OthersLock& operator=(const OthersLock&) = delete;
  ~OthersLock() { ::close(fd_); }

 private:
  int fd_;
};

TEST(SettingsLock, HeldByAnotherProcessFailsTheSynchronizeAfterItsLimit) {
  SettingsFixture box;
  auto defaults = box.store(milliseconds(50));
  ASSERT_TRUE(store(defaults, "k", "old"));
  const auto before = box.syscalls.steadyNow();
  {
    const OthersLock other(box.lockFile());
    EXPECT_FALSE(store(defaults, "k", "new"));
  }

  EXPECT_GE(box.syscalls.steadyNow() - before, milliseconds(50));  // of the clock that the pauses turn
  EXPECT_EQ(box.entries(), Value::map({{"k", "old"}}));
  EXPECT_EQ(defaults.objectForKey("k"), Value("new"));
  EXPECT_TRUE(defaults.synchronize());
  EXPECT_EQ(box.entries(), Value::map({{"k", "new"}}));
}

TEST(SettingsLock, IsAskedForAtLeastEveryFourMilliseconds) {
  SettingsFixture box;
  auto defaults = box.store(milliseconds(2000));
  ASSERT_TRUE(store(defaults, "k", "old"));
  const OthersLock other(box.lockFile());
  box.syscalls.forget();

  EXPECT_FALSE(store(defaults, "k", "new"));

  EXPECT_GE(box.syscalls.count("flock"), 100U);  // the real time that passes counts as well
  EXPECT_LE(box.syscalls.count("flock"), 506U);
}

TEST(SettingsLock, ReleasedWhileWaitedForIsTaken) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "k", "old"));
  std::optional<OthersLock> other(box.lockFile());
  box.syscalls.setHook([&, pauses = 0](const std::string& call) mutable {
    if (call == "sleep" && ++pauses == 3) other.reset();
    return 0;
  });

  EXPECT_TRUE(store(defaults, "k", "new"));

  EXPECT_EQ(box.entries(), Value::map({{"k", "new"}}));
}

TEST(SettingsLock, OfAFileThatSomebodyRemovedIsTakenOnTheNewOne) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "k", "old"));
  std::string atWrite;
  box.syscalls.setHook([&, removed = false](const std::string& call) mutable {
    if (call == "flock Library/Preferences/app.plist.lock" && !std::exchange(removed, true)) {
      std::filesystem::remove(box.lockFile());
    }
    if (call.starts_with("write")) {
      const int fd = ::open(box.lockFile().c_str(), O_RDWR);
      if (fd < 0) return 0;
      atWrite = ::flock(fd, LOCK_EX | LOCK_NB) == 0 ? "free" : "locked";
      ::close(fd);
    }
    return 0;
  });

  EXPECT_TRUE(store(defaults, "k", "new"));

  EXPECT_EQ(atWrite, "locked");
}

// A thread that waits while another one's write takes its change along has nothing left to write.
TEST(SettingsTurn, ChangesOfWaitingThreadsAreWrittenInOneGo) {
  constexpr int kThreads = 16;
  SettingsFixture box;
  auto defaults = box.store(std::chrono::minutes(1));
  Gate set;
  Gate writing;
  std::atomic<bool> first = true;
  box.syscalls.setHook([&](const std::string& call) {
    if (call.starts_with("write") && first.exchange(false)) {
      writing.open();
      set.wait();
    }
    return 0;
  });
  std::vector<std::thread> threads;
  std::atomic<int> synchronized = 0;

  threads.emplace_back([&] { synchronized += store(defaults, "first", 0) ? 1 : 0; });
  writing.wait();
  for (int i = 0; i < kThreads; ++i) defaults.setObjectForKey(i, "k" + std::to_string(i));
  for (int i = 0; i < kThreads; ++i) threads.emplace_back([&] { synchronized += defaults.synchronize() ? 1 : 0; });
  set.open();
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(synchronized, kThreads + 1);
  EXPECT_EQ(box.syscalls.count("rename"), 2U);
  ASSERT_TRUE(box.entries().ifMap());
  EXPECT_EQ(box.entries().ifMap()->size(), kThreads + 1U);
}

TEST(SettingsTurn, AThreadWhoseChangeIsInTheWriteUnderWayAnswersWithIt) {
  SettingsFixture box;
  auto defaults = box.store(milliseconds(0));
  box.syscalls.setHook([&, inside = false](const std::string& call) mutable {
    if (call.starts_with("write") && !std::exchange(inside, true)) {
      std::thread([&] { EXPECT_FALSE(defaults.synchronize()); }).join();  // not on the disk yet, and no time left
    }
    return 0;
  });

  EXPECT_TRUE(store(defaults, "k", "v"));
  EXPECT_TRUE(defaults.synchronize());
}

// The change is made after the write under way took its copy, so it is not dropped with that.
TEST(SettingsTurn, AChangeDuringAWriteStaysPending) {
  SettingsFixture box;
  auto defaults = box.store();
  box.syscalls.setHook([&, inside = false](const std::string& call) mutable {
    if (call.starts_with("write") && !std::exchange(inside, true)) defaults.setObjectForKey("later", "k");
    return 0;
  });

  EXPECT_TRUE(store(defaults, "k", "earlier"));
  EXPECT_EQ(box.entries(), Value::map({{"k", "earlier"}}));
  EXPECT_EQ(defaults.objectForKey("k"), Value("later"));

  EXPECT_TRUE(defaults.synchronize());
  EXPECT_EQ(box.entries(), Value::map({{"k", "later"}}));
}

TEST(SettingsTurn, AReaderIsNotHeldUpByAWrite) {
  SettingsFixture box;
  box.put(ValueMap{{"other", 1}});
  auto defaults = box.store();
  std::optional<Value> read;
  box.syscalls.setHook([&](const std::string& call) {
    if (call.starts_with("fsync tmp")) std::thread([&] { read = defaults.objectForKey("other"); }).join();
    return 0;
  });

  EXPECT_TRUE(store(defaults, "k", "v"));

  EXPECT_EQ(read, Value(1));
}

// Each thread of each process counts a key of its own up and writes each number to a pipe once it is
// acknowledged. The processes share one file.
constexpr int kProcesses = 4;
constexpr int kThreadsEach = 8;
constexpr int kSets = 25;

void countUp(const linux_platform::Container& container, int process, int acknowledgements) {
  RecordingPlatform recorder;
  SettingsStore defaults(container, recorder.console(), linux_platform::Syscalls::real(), std::chrono::minutes(1));
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreadsEach; ++thread) {
    threads.emplace_back([&, key = "k" + std::to_string(process) + "-" + std::to_string(thread)] {
      for (int i = 1; i <= kSets; ++i) {
        if (!store(defaults, key, i)) continue;
        const std::string line = key + " " + std::to_string(i) + "\n";
        if (::write(acknowledgements, line.data(), line.size()) < 0) ::_exit(1);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(SettingsOfManyProcesses, NothingAcknowledgedIsLost) {
#ifdef TAVLO_TEST_EMULATED
  GTEST_SKIP() << "the emulator aborts at times where a forked process starts threads";
#endif
  SettingsFixture box;
  box.put(ValueMap{{"foreign", "stays"}});
  int lines[2];
  ASSERT_EQ(::pipe(lines), 0);
  for (int process = 0; process < kProcesses; ++process) {
    if (::fork() == 0) {
      countUp(box.container, process, lines[1]);
      ::_exit(0);
    }
  }
  ::close(lines[1]);
  std::string text;
  char block[4096];
  for (ssize_t n = 0; (n = ::read(lines[0], block, sizeof block)) > 0;) text.append(block, static_cast<std::size_t>(n));
  ::close(lines[0]);
  for (int status = 0; ::wait(&status) > 0;) EXPECT_EQ(status, 0);

  std::map<std::string, int> acknowledged;
  int count = 0;
  std::istringstream stream(text);
  for (std::string key; stream >> key; ++count) stream >> acknowledged[key];
  EXPECT_EQ(count, kProcesses * kThreadsEach * kSets);
  const Value entries = box.entries();
  ASSERT_TRUE(entries.ifMap());
  EXPECT_EQ(entries.ifMap()->size(), acknowledged.size() + 1);
  for (const auto& [key, last] : acknowledged) {
    EXPECT_THAT(entries.ifMap()->find(key), testing::Pointee(Value(last))) << key;
  }
  EXPECT_THAT(entries.ifMap()->find("foreign"), testing::Pointee(Value("stays")));
  EXPECT_THAT(box.temporaries(), IsEmpty());
}

// Writers set one key to texts that repeat a digit; a reader never sees two digits in one.
TEST(SettingsOfManyThreads, ReadersSeeWholeValuesAndWritersAreAllAcknowledged) {
  constexpr int kWriters = 8;
  constexpr int kReaders = 56;
  SettingsFixture box;
  RecordingPlatform recorder;
  SettingsStore defaults(box.container, recorder.console(), linux_platform::Syscalls::real(), std::chrono::minutes(1));
  ASSERT_TRUE(store(defaults, "k", std::string(100, '0')));
  std::atomic<int> acknowledged = 0;
  std::atomic<int> torn = 0;
  std::vector<std::thread> threads;

  for (int writer = 0; writer < kWriters; ++writer) {
    threads.emplace_back([&, text = std::string(100, static_cast<char>('1' + writer))] {
      for (int i = 0; i < 10; ++i) acknowledged += store(defaults, "k", text) ? 1 : 0;
    });
  }
  for (int reader = 0; reader < kReaders; ++reader) {
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) {
        const std::optional<Value> value = defaults.objectForKey("k");
        const auto text = value ? value->ifText() : std::nullopt;
        if (!text || *text != std::string(100, text->front())) ++torn;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(acknowledged, kWriters * 10);
  EXPECT_EQ(torn, 0);
  EXPECT_THAT(recorder.consoleLines(), IsEmpty());
}

}  // namespace
}  // namespace tavlo::test
