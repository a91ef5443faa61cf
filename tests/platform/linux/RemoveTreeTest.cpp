#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "tests/platform/linux/RemoveTreeFixture.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

TEST_F(RemoveTree, TakesAFileInOneCall) {
  writeFile(folder_ / "file", "x");

  EXPECT_TRUE(remove(folder_ / "file"));

  EXPECT_THAT(left(), ElementsAre());
  EXPECT_THAT(syscalls_.calls(), ElementsAre("unlink file"));
}

TEST_F(RemoveTree, TakesAFolderWithAllInIt) {
  plant();

  EXPECT_TRUE(remove(folder_ / "tree"));

  EXPECT_THAT(left(), ElementsAre());
}

TEST_F(RemoveTree, TakesAFolderNamedWithASlash) {
  plant();

  EXPECT_TRUE(remove(folder_.path().string() + "/tree/"));

  EXPECT_THAT(left(), ElementsAre());
}

TEST_F(RemoveTree, WhatIsNotThereFails) {
  EXPECT_FALSE(remove(folder_ / "gone"));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_FALSE(remove(""));
}

TEST_F(RemoveTree, WhatCannotBeRemovedKeepsWhatIsInIt) {
  plant();
  const std::string tree = folder_.path().string() + "/tree";

  for (const std::string& path : {tree + "/.", tree + "/sub/..", tree + "/./", std::string("."), std::string("..")}) {
    EXPECT_FALSE(remove(path)) << path;
    EXPECT_EQ(errno, EINVAL) << path;
  }
  syscalls_.setHook([](const std::string&) { return EIO; });  // so that nothing is lost should it go on
  EXPECT_FALSE(remove("/"));
  EXPECT_EQ(errno, EINVAL);

  EXPECT_EQ(left().size(), 7U);
}

TEST_F(RemoveTree, ALinkIsRemovedAndNotFollowed) {
  plant();
  fs::create_directory_symlink(folder_ / "tree", folder_ / "link");

  EXPECT_FALSE(remove(folder_.path().string() + "/link/"));
  EXPECT_TRUE(remove(folder_ / "link"));

  EXPECT_EQ(left().size(), 7U);
}

TEST_F(RemoveTree, FiveThousandLevelsTakeThreeOpenFiles) {
  const int start = ::open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY);
  int at = start;
  for (int i = 0; i < 5000; ++i) {
    ASSERT_EQ(::mkdirat(at, "d", 0700), 0);
    const int next = ::openat(at, "d", O_RDONLY | O_DIRECTORY);
    ::close(at);
    at = next;
  }
  ::close(at);
  std::size_t open = 0;
  std::size_t most = 0;
  syscalls_.setHook([&](const std::string& call) {
    if (call.starts_with("open")) most = std::max(most, ++open);
    if (call.starts_with("openFolderNames")) --open;  // a call on one that is open
    if (call.starts_with("close")) --open;
    return 0;
  });

  EXPECT_TRUE(remove(folder_ / "d"));

  EXPECT_THAT(left(), ElementsAre());
  EXPECT_EQ(most, 3U);
}

TEST_F(RemoveTree, WhatFailsStaysAndTheRestGoes) {
  plant();
  syscalls_.setHook([](const std::string& call) { return call == "unlinkat tree/sub/file" ? EPERM : 0; });

  EXPECT_FALSE(remove(folder_ / "tree"));

  EXPECT_EQ(errno, EPERM);
  EXPECT_THAT(left(), UnorderedElementsAre("tree", "tree/sub", "tree/sub/file"));
}

TEST_F(RemoveTree, EveryCallMayFailOnceAndTheNextTryTakesAll) {
  for (int n = 1;; ++n) {
    plant();
    for (const int error : {EIO, EACCES, EMFILE, EINTR}) {
      bool failed = false;
      int left = n;
      syscalls_.setHook([&](const std::string&) {
        failed = failed || left == 1;
        return left-- == 1 ? error : 0;
      });
      if (fs::exists(folder_ / "tree")) {
        const bool removed = remove(folder_ / "tree");
        EXPECT_EQ(removed, !fs::exists(folder_ / "tree")) << n << " " << error;
      }
      if (!failed && error == EIO) {
        EXPECT_GT(n, 20);
        return;
      }
      syscalls_.setHook(nullptr);
      plant();
    }
    EXPECT_TRUE(remove(folder_ / "tree"));
  }
}

// The rest of the test runs without the rights of the superuser, whom no mode stops.
class AsNobody {
 public:
  explicit AsNobody(const fs::path& folder) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      EXPECT_EQ(::lchown(entry.path().c_str(), kNobody, kNobody), 0);
    }
    EXPECT_EQ(::chown(folder.c_str(), kNobody, kNobody), 0);
    EXPECT_EQ(::seteuid(kNobody), 0);
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;
  ~AsNobody() { EXPECT_EQ(::seteuid(0), 0); }

 private:
  static constexpr uid_t kNobody = 65534;
};

TEST_F(RemoveTree, AnUnreadableFolderGoesOnlyWhenItIsEmptyAndTheRestGoes) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be started by the superuser, to step down";
  plant();
  fs::create_directory(folder_ / "tree/unreadable");
  writeFile(folder_ / "tree/unreadable/file", "x");
  fs::create_directory(folder_ / "tree/unreadable-empty");
  for (const char* const name : {"tree/unreadable", "tree/unreadable-empty"}) {
    fs::permissions(folder_ / name, fs::perms::none);
  }

  {
    const AsNobody nobody(folder_.path());
    EXPECT_FALSE(remove(folder_ / "tree"));
    EXPECT_EQ(errno, EACCES);
  }

  EXPECT_THAT(left(), UnorderedElementsAre("tree", "tree/unreadable", "tree/unreadable/file"));
}

TEST_F(RemoveTree, AFolderThatCannotBeSearchedLosesNothingAndStopsNothing) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be started by the superuser, to step down";
  plant();
  fs::permissions(folder_ / "tree/sub", fs::perms::owner_read);

  {
    const AsNobody nobody(folder_.path());
    EXPECT_FALSE(remove(folder_ / "tree"));
    EXPECT_EQ(errno, EACCES);
  }

  EXPECT_THAT(left(), UnorderedElementsAre("tree", "tree/sub", "tree/sub/deep", "tree/sub/deep/file", "tree/sub/file"));
}

TEST_F(RemoveTree, AFolderThatCannotBeWrittenToLosesWhatItsFoldersHold) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be started by the superuser, to step down";
  for (const char* const item : {"tree", "tree/sub/deep"}) {
    plant();
    fs::permissions(folder_ / "tree/sub", fs::perms::owner_read | fs::perms::owner_exec);

    {
      const AsNobody nobody(folder_.path());
      EXPECT_FALSE(remove(folder_ / item)) << item;
      EXPECT_EQ(errno, EACCES) << item;
    }

    EXPECT_FALSE(fs::exists(folder_ / "tree/sub/deep/file")) << item;
    EXPECT_TRUE(fs::exists(folder_ / "tree/sub/deep")) << item;
    EXPECT_TRUE(fs::exists(folder_ / "tree/sub/file")) << item;
    fs::remove_all(folder_ / "tree");
  }
}

}  // namespace
}  // namespace tavlo::test
