// A process that dies at any system call of a write or of a removal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;
using linux_platform::LinuxFileManager;
using platform::Durable;
using platform::Removal;

constexpr int kKilled = 9;

class FilesAfterAKill : public testing::Test {
 protected:
  // Runs the work in a child that dies at its n-th call, counted from 1; whether it came to that.
  template <class Work>
  [[nodiscard]] bool killAt(int n, Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
      syscalls_.setHook([n](const std::string&) mutable {
        if (--n == 0) ::_exit(kKilled);
        return 0;
      });
      work();
      ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status) == kKilled;
  }

  [[nodiscard]] std::string at(const std::string& name) const { return (folder_ / name).string(); }
  // Those of an app that has just been started.
  [[nodiscard]] LinuxFileManager files() { return LinuxFileManager(container_, syscalls_); }
  [[nodiscard]] std::size_t temporaries() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_ / "tmp"), {}));
  }

  TemporaryFolder folder_;
  Container container_ = *Container::locate(folder_.path(), "player");
  FaultySyscalls syscalls_{folder_.path().string()};
};

TEST_F(FilesAfterAKill, AnImageIsTheOldOneOrTheNewOne) {
  const std::string before(70000, 'o');
  const std::string after(90000, 'n');
  int n = 1;
  for (;; ++n) {
    ASSERT_TRUE(files().writeToFileAtomically(before, at("image"), Durable::contents));

    const bool killed =
        killAt(n, [&] { static_cast<void>(files().writeToFileAtomically(after, at("image"), Durable::contents)); });

    const std::string found = readFile(folder_ / "image");
    EXPECT_TRUE(found == before || found == after) << "killed at call " << n << ": " << found.size() << " bytes";
    EXPECT_LE(temporaries(), 1U) << "killed at call " << n;
    if (!killed) break;
  }

  EXPECT_GE(n, 10);
  ASSERT_TRUE(files().writeToFileAtomically("last", at("image"), Durable::contents));
  EXPECT_EQ(temporaries(), 0U);
}

TEST_F(FilesAfterAKill, WhatARemovalLeftTheNextOneTakes) {
  int n = 1;
  for (;; ++n) {
    fs::create_directories(folder_ / "tree/sub/deep");
    for (const char* const file : {"beside", "tree/file", "tree/sub/file", "tree/sub/deep/file"}) {
      writeFile(folder_ / file, "whole");
    }

    const bool killed = killAt(n, [&] { static_cast<void>(files().removeItemAtPath(at("tree"), Removal::anything)); });

    EXPECT_EQ(readFile(folder_ / "beside"), "whole");
    const bool left = fs::exists(folder_ / "tree");
    EXPECT_EQ(static_cast<bool>(files().removeItemAtPath(at("tree"), Removal::anything)), left);
    EXPECT_FALSE(fs::exists(folder_ / "tree")) << "killed at call " << n;
    if (!killed) break;
  }

  EXPECT_GE(n, 20);
}

}  // namespace
}  // namespace tavlo::test
