#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/AtomicFile.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::sweepTemporaries;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class AtomicFile : public testing::Test {
 protected:
  AtomicFile() { fs::create_directory(temporary_); }

  [[nodiscard]] std::vector<std::string> temporaries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(temporary_)) names.push_back(entry.path().filename().string());
    return names;
  }
  [[nodiscard]] bool replace(const std::string& bytes) { return replacer_.replace(target_, bytes); }

  TemporaryFolder folder_;
  fs::path temporary_ = folder_ / "tmp";
  fs::path target_ = folder_ / "target";
  FaultySyscalls syscalls_{folder_.path().string()};
  linux_platform::FileReplacer replacer_{syscalls_, temporary_};
};

TEST_F(AtomicFile, MakesAFileOfTheUsersAlone) {
  ASSERT_TRUE(replace("new"));

  struct stat status {};
  ASSERT_EQ(::stat(target_.c_str(), &status), 0);
  EXPECT_EQ(readFile(target_), "new");
  EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | 0600));
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(AtomicFile, AReaderOfTheOldFileKeepsItsContents) {
  writeFile(target_, "old");
  const int fd = ::open(target_.c_str(), O_RDONLY);

  ASSERT_TRUE(replace("new"));

  char bytes[4] = {};
  EXPECT_EQ(::read(fd, bytes, 3), 3);
  ::close(fd);
  EXPECT_STREQ(bytes, "old");
  EXPECT_EQ(readFile(target_), "new");
}

TEST_F(AtomicFile, ABytelessFileIsAFile) {
  writeFile(target_, "old");

  ASSERT_TRUE(replace(""));

  EXPECT_TRUE(fs::exists(target_));
  EXPECT_EQ(readFile(target_), "");
}

TEST_F(AtomicFile, AFolderInThePlaceOfTheTargetFailsAndStays) {
  fs::create_directory(target_);

  EXPECT_FALSE(replace("new"));

  EXPECT_TRUE(fs::is_directory(target_));
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(AtomicFile, WithoutItsTemporaryFolderItFails) {
  fs::remove(temporary_);

  EXPECT_FALSE(replace("new"));

  EXPECT_FALSE(fs::exists(target_));
}

TEST_F(AtomicFile, AnAbandonedTemporaryIsGoneBeforeTheNextOneIsMade) {
  writeFile(temporary_ / "tavlo-1-1.tmp", "of a process that was killed");

  ASSERT_TRUE(replace("new"));

  EXPECT_THAT(temporaries(), IsEmpty());
  const auto calls = syscalls_.calls();
  const auto swept = std::find(calls.begin(), calls.end(), "unlink tmp/tavlo-#.tmp");
  EXPECT_EQ(std::count(swept, calls.end(), "write tmp/tavlo-#.tmp"), 1);
}

TEST_F(AtomicFile, TheTemporariesAreListedForTheFirstFileAndAgainAfterAFailure) {
  ASSERT_TRUE(replace("new"));
  ASSERT_TRUE(replace("newer"));
  EXPECT_EQ(syscalls_.count("folderNames tmp"), 1U);

  syscalls_.setHook(failing("fsync tmp/", ENOSPC));
  ASSERT_FALSE(replace("newest"));
  writeFile(temporary_ / "tavlo-1-1.tmp", "of a process that was killed");
  ASSERT_TRUE(replace("newest"));

  EXPECT_EQ(syscalls_.count("folderNames tmp"), 2U);
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(AtomicFile, ATemporaryWhoseOwnerLivesIsLeftAlone) {
  const int owner = ::open((temporary_ / "tavlo-1-1.tmp").c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_EQ(::flock(owner, LOCK_EX | LOCK_NB), 0);

  ASSERT_TRUE(replace("new"));
  EXPECT_THAT(temporaries(), ElementsAre("tavlo-1-1.tmp"));

  ::close(owner);
  sweepTemporaries(syscalls_, temporary_);
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(AtomicFile, WhatIsNoTemporaryOfOursIsLeftAlone) {
  for (const char* const name : {"tavlo-1-1", "1.tmp", "host's own"}) writeFile(temporary_ / name, "x");
  fs::create_directory(temporary_ / "tavlo-folder.tmp");
  fs::create_symlink(folder_ / "elsewhere", temporary_ / "tavlo-link.tmp");
  writeFile(folder_ / "elsewhere", "x");

  sweepTemporaries(syscalls_, temporary_);

  EXPECT_THAT(temporaries(),
              UnorderedElementsAre("tavlo-1-1", "1.tmp", "host's own", "tavlo-folder.tmp", "tavlo-link.tmp"));
  EXPECT_TRUE(fs::exists(folder_ / "elsewhere"));
}

TEST_F(AtomicFile, AFifoAmongTheTemporariesDoesNotBlockTheSweep) {
  ASSERT_EQ(::mkfifo((temporary_ / "tavlo-1-1.tmp").c_str(), 0600), 0);

  sweepTemporaries(syscalls_, temporary_);

  EXPECT_THAT(temporaries(), IsEmpty());
}

// Between its making and its locking a temporary looks abandoned. Whoever sweeps it then takes it away, and
// the writer goes on under another name.
TEST_F(AtomicFile, ATemporarySweptBeforeItIsLockedIsReplacedByAnother) {
  syscalls_.setHook([&, swept = false](const std::string& call) mutable {
    if (call == "flock tmp/tavlo-#.tmp" && !std::exchange(swept, true)) {
      sweepTemporaries(linux_platform::Syscalls::real(), temporary_);
    }
    return 0;
  });

  EXPECT_TRUE(replace("new"));

  EXPECT_EQ(readFile(target_), "new");
  EXPECT_EQ(syscalls_.count("open tmp/tavlo-#.tmp"), 2U);
}

TEST_F(AtomicFile, ATemporaryLockedByASweepIsLeftToItForAnother) {
  int sweep = -1;
  syscalls_.setHook([&](const std::string& call) {
    if (call == "flock tmp/tavlo-#.tmp" && sweep < 0) {
      sweep = ::open((temporary_ / temporaries().front()).c_str(), O_RDONLY);
      EXPECT_EQ(::flock(sweep, LOCK_EX | LOCK_NB), 0);
    }
    return 0;
  });

  EXPECT_TRUE(replace("new"));

  ::close(sweep);
  EXPECT_EQ(readFile(target_), "new");
  EXPECT_EQ(temporaries().size(), 1U);  // the sweep that holds it removes it
}

// The sweep opens a temporary, and its owner is done with it before the sweep gets the lock.
TEST_F(AtomicFile, AFileThatGotItsFinalNameDuringASweepStays) {
  const fs::path path = temporary_ / "tavlo-1-1.tmp";
  writeFile(path, "done");
  syscalls_.setHook([&](const std::string& call) {
    if (call.starts_with("flock")) {
      fs::rename(path, target_);
      writeFile(path, "the next one of that name");
    }
    return 0;
  });

  sweepTemporaries(syscalls_, temporary_);

  EXPECT_EQ(readFile(target_), "done");
  EXPECT_EQ(readFile(path), "the next one of that name");
}

TEST_F(AtomicFile, TheTemporaryIsLockedUntilItHasItsFinalName) {
  std::vector<std::string> found;
  syscalls_.setHook([&](const std::string& call) {
    if (call.starts_with("write") || call.starts_with("fsync tmp") || call.starts_with("rename")) {
      sweepTemporaries(linux_platform::Syscalls::real(), temporary_);
      found.push_back(call.substr(0, call.find(' ')) + " " + std::to_string(temporaries().size()));
    }
    return 0;
  });

  EXPECT_TRUE(replace("new"));

  EXPECT_THAT(found, ElementsAre("write 1", "fsync 1", "rename 1"));
}

struct Trouble {
  std::string name;
  std::string call;
  int error;
};

class AbandonedTemporary : public AtomicFile, public testing::WithParamInterface<Trouble> {};

INSTANTIATE_TEST_SUITE_P(Sweeps, AbandonedTemporary,
                         testing::Values(Trouble{"NotListed", "folderNames", EIO}, Trouble{"NotOpened", "open", EACCES},
                                         Trouble{"NotLocked", "flock", EIO}, Trouble{"NotLookedAt", "fstat", EIO},
                                         Trouble{"NotFound", "stat", EIO}, Trouble{"NotRemoved", "unlink", EROFS}),
                         [](const auto& row) { return row.param.name; });

TEST_P(AbandonedTemporary, ThatCannotBeSweptFailsNoWriteAndGoesWithTheNext) {
  writeFile(temporary_ / "tavlo-1-1.tmp", "x");
  syscalls_.setHook(failing(GetParam().call, GetParam().error));

  EXPECT_TRUE(replace("new"));
  EXPECT_EQ(readFile(target_), "new");
  EXPECT_THAT(temporaries(), ElementsAre("tavlo-1-1.tmp"));

  EXPECT_TRUE(replace("newer"));
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(AtomicFile, OfTwoAbandonedTemporariesTheOneThatCannotBeSweptGoesWithTheNextWrite) {
  for (const char* const name : {"tavlo-1-1.tmp", "tavlo-1-2.tmp"}) writeFile(temporary_ / name, "x");
  syscalls_.setHook(failing("unlink", EROFS));

  EXPECT_TRUE(replace("new"));
  EXPECT_EQ(temporaries().size(), 1U);

  EXPECT_TRUE(replace("newer"));
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(AtomicFile, NamesThatAreTakenArePassedOverButNotForEver) {
  syscalls_.setHook(failing("open tmp/tavlo-#.tmp", EEXIST, 3));
  EXPECT_TRUE(replace("new"));

  syscalls_.setHook([](const std::string& call) { return call.starts_with("open tmp/") ? EEXIST : 0; });
  syscalls_.forget();
  EXPECT_FALSE(replace("newer"));

  EXPECT_EQ(syscalls_.count("open tmp/tavlo-#.tmp"), 100U);
  EXPECT_EQ(readFile(target_), "new");
}

TEST_F(AtomicFile, TheErrorOfTheFailedStepIsLeftForTheCaller) {
  for (const std::string call : {"open tmp/", "flock", "fstat", "write", "fsync tmp/", "rename", "fsync"}) {
    syscalls_.setHook([&](const std::string& made) {
      if (made.starts_with("close") || made.starts_with("unlink")) return EBADF;
      return made.starts_with(call) ? ENOSPC : 0;
    });
    errno = 0;

    EXPECT_FALSE(replace("new"));

    EXPECT_EQ(errno, ENOSPC) << call;
    syscalls_.setHook(nullptr);
    sweepTemporaries(syscalls_, temporary_);
  }
}

}  // namespace
}  // namespace tavlo::test
