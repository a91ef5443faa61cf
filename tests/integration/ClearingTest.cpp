// What a cache directory can hold that is hard to remove, on real files: all of it goes but the log, and what lies
// elsewhere stays.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "TavloUtility.h"
#include "tests/integration/RealWorld.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

// Names that are legal on the disk and unusual elsewhere.
const Lines kOddNames{"a\nb", "\n",  std::string(255, 'n'), "\xFF\xFE",        "\xC0\xAF", "\xE2\x80\xAE", " ", "*",
                      "-rf",  "%2F", "TavloLogFile.txt ",   "tavlologfile.txt"};

class Clearing : public testing::Test {
 protected:
  Clearing() {
    world_.putFolder("TavloCache");
    world_.put("TavloCache/TavloLogFile.txt", "log");
  }

  // A chain of folders, each in the one before; longer than any path.
  void putChain(const std::string& name, int levels) const {
    int at = ::open(world_.place(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < levels; ++i) {
      ASSERT_EQ(::mkdirat(at, "d", 0700), 0) << i;
      const int next = ::openat(at, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      ::close(at);
      at = next;
    }
    ::close(at);
  }

  RealWorld world_;
};

TEST_F(Clearing, TakesALinkAndLeavesWhatItLeadsTo) {
  world_.putFolder("outside");
  world_.put("outside/precious", "x");
  fs::create_directory_symlink(world_.place("outside"), world_.place("TavloCache/link"));

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
  EXPECT_EQ(world_.names("outside"), (Lines{"precious"}));
  EXPECT_EQ(world_.bytes("outside/precious"), "x");
  reached("T6d", "link gone and its target untouched");
}

TEST_F(Clearing, TakesFoldersThousandsOfLevelsDeep) {
  const int levels = figure(500, 5'000);
  putChain("TavloCache", levels);

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
  EXPECT_EQ(world_.bytes("TavloCache/TavloLogFile.txt"), "log");
  reached("T6d", std::to_string(levels) + " levels gone");
}

TEST_F(Clearing, TakesAnyNameInTheCacheAndBelow) {
  world_.putFolder("TavloCache/sub");
  for (const std::string& name : kOddNames) {
    world_.put("TavloCache/" + name, "x");
    world_.put("TavloCache/sub/" + name, "x");
    ASSERT_TRUE(fs::exists(world_.place("TavloCache/sub/" + name))) << name;
  }

  TavloUtility::clearCache();

  EXPECT_EQ(world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
  reached("T6d", std::to_string(kOddNames.size()) + " odd names gone");
}

TEST_F(Clearing, OfALargeCacheLeavesTheLog) {
  const int entries = figure(5'000, 100'000);
  for (int i = 0; i < entries; ++i) {
    ASSERT_EQ(::mknod(world_.place("TavloCache/" + std::to_string(i)).c_str(), S_IFREG | 0600, 0), 0);
  }
  const auto begin = std::chrono::steady_clock::now();

  TavloUtility::clearCache();

  const auto time =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin).count();
  EXPECT_EQ(world_.names("TavloCache"), (Lines{"TavloLogFile.txt"}));
  EXPECT_EQ(world_.bytes("TavloCache/TavloLogFile.txt"), "log");
  reached("T6d", std::to_string(entries) + " entries gone in " + std::to_string(time) + " ms");
}

// As it is for an app, whom modes stop: in a child that gives the superuser's rights up for good.
TEST_F(Clearing, PassesAFolderThatMayNotBeReadAndTakesAllElse) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be started by the superuser, to step down";
  constexpr uid_t kNobody = 65534;
  world_.put("TavloCache/a", "x");
  world_.put("TavloCache/z", "x");
  for (const char* const name : {"TavloCache/full", "TavloCache/none"}) world_.putFolder(name);
  world_.put("TavloCache/full/precious", "x");
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(world_.documents()).parent_path())) {
    ASSERT_EQ(::lchown(entry.path().c_str(), kNobody, kNobody), 0);
  }
  ASSERT_EQ(::chown(fs::path(world_.documents()).parent_path().c_str(), kNobody, kNobody), 0);
  for (const char* const name : {"TavloCache/full", "TavloCache/none"}) {
    fs::permissions(world_.place(name), fs::perms::none);
  }

  const pid_t child = ::fork();
  if (child == 0) {
    if (::setuid(kNobody) != 0) ::_exit(2);
    TavloUtility::clearCache();
    ::_exit(::access(world_.place("TavloCache/full").c_str(), R_OK) == 0 ? 3 : 0);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);

  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0);
  EXPECT_EQ(world_.names("TavloCache"), (Lines{"TavloLogFile.txt", "full"}));
  EXPECT_EQ(world_.names("TavloCache/full"), (Lines{"precious"}));
  EXPECT_EQ(world_.bytes("TavloCache/TavloLogFile.txt"), "log");
  reached("T6d", "a folder of mode 000 passed as another user");
}

}  // namespace
}  // namespace tavlo::test
