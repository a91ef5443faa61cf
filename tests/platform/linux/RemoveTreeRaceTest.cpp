// removeTree() while others work on the same files.
#include <gmock/gmock.h>

#include <cerrno>
#include <latch>
#include <thread>

#include "tests/platform/linux/RemoveTreeFixture.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::removeTree;
using testing::ElementsAre;

TEST_F(RemoveTree, AFolderThatBecomesALinkMeanwhileIsNotFollowed) {
  plant();
  fs::create_directory(folder_ / "outside");
  writeFile(folder_ / "outside/precious", "x");
  syscalls_.setHook([&](const std::string& call) {
    if (call == "openat tree/sub") {
      fs::rename(folder_ / "tree/sub", folder_ / "moved");
      fs::create_directory_symlink(folder_ / "outside", folder_ / "tree/sub");
    }
    return 0;
  });

  EXPECT_FALSE(remove(folder_ / "tree"));

  EXPECT_TRUE(fs::exists(folder_ / "outside/precious"));
  EXPECT_TRUE(fs::exists(folder_ / "moved/deep/file"));
}

TEST_F(RemoveTree, AnItemThatBecomesALinkMeanwhileIsNotFollowed) {
  for (const char* const name : {"tree", "tree/"}) {
    plant();
    fs::create_directory(folder_ / "outside");
    writeFile(folder_ / "outside/precious", "x");
    syscalls_.setHook([&](const std::string& call) {
      if (call.starts_with("open tree")) {
        fs::rename(folder_ / "tree", folder_ / "moved");
        fs::create_directory_symlink(folder_ / "outside", folder_ / "tree");
      }
      return 0;
    });

    EXPECT_FALSE(remove(folder_.path().string() + "/" + name)) << name;

    EXPECT_TRUE(fs::exists(folder_ / "outside/precious")) << name;
    EXPECT_TRUE(fs::exists(folder_ / "moved/file")) << name;
    fs::remove_all(folder_ / "moved");
    fs::remove(folder_ / "tree");
  }
}

TEST_F(RemoveTree, AFolderThatIsMovedAwayMeanwhileEndsIt) {
  plant();
  syscalls_.setHook([&](const std::string& call) {
    if (call == "unlinkat tree/sub/deep/file") {
      fs::create_directory(folder_ / "elsewhere");
      writeFile(folder_ / "elsewhere/precious", "x");
      fs::rename(folder_ / "tree/sub/deep", folder_ / "elsewhere/deep");
    }
    return 0;
  });

  EXPECT_FALSE(remove(folder_ / "tree"));

  EXPECT_EQ(errno, ESTALE);
  EXPECT_TRUE(fs::exists(folder_ / "elsewhere/precious"));
}

TEST_F(RemoveTree, WhatAnotherRemovesMeanwhileCountsAsRemoved) {
  plant();
  syscalls_.setHook([&](const std::string& call) {
    if (call == "unlinkat tree/file") fs::remove(folder_ / "tree/file");
    if (call == "rmdirat tree/sub/deep") fs::remove(folder_ / "tree/sub/deep");
    return 0;
  });

  EXPECT_TRUE(remove(folder_ / "tree"));

  EXPECT_THAT(left(), ElementsAre());
}

TEST_F(RemoveTree, WhatAnotherRemovesMeanwhileIsNotTheReasonOfAFailure) {
  plant();
  syscalls_.setHook([&](const std::string& call) {
    if (call == "unlinkat tree/sub/deep/file") fs::remove(folder_ / "tree/sub/deep/file");
    return call == "rmdirat tree/sub" ? EPERM : 0;
  });

  EXPECT_FALSE(remove(folder_ / "tree"));

  EXPECT_EQ(errno, EPERM);
}

TEST_F(RemoveTree, ATreeThatAnotherRemovesWholeMeanwhileIsNotThere) {
  plant();
  syscalls_.setHook([&](const std::string& call) {
    if (call == "openat tree/sub") fs::remove_all(folder_ / "tree");
    return 0;
  });

  EXPECT_FALSE(remove(folder_ / "tree"));

  EXPECT_THAT(left(), ElementsAre());
}

TEST_F(RemoveTree, ThreadsThatRemoveTheSameTreeAllEndAndLeaveNothingToTheNextTry) {
  constexpr int kThreads = 8;
  for (int round = 0; round < 20; ++round) {
    plant();
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        start.arrive_and_wait();
        static_cast<void>(removeTree(linux_platform::Syscalls::real(), folder_ / "tree"));
      });
    }
    for (std::thread& thread : threads) thread.join();
    static_cast<void>(remove(folder_ / "tree"));  // a thread stops where another one took its way back
    EXPECT_THAT(left(), ElementsAre());
  }
}

}  // namespace
}  // namespace tavlo::test
