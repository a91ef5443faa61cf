#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;
using linux_platform::LinuxFileManager;
using platform::Durable;
using platform::Existence;
using platform::Removal;
using testing::IsEmpty;

class FilesOfLinux : public testing::Test {
 protected:
  [[nodiscard]] std::string at(const std::string& name) const { return (folder_ / name).string(); }
  [[nodiscard]] std::vector<std::string> temporaries() const {
    std::vector<std::string> names;
    if (!fs::exists(folder_ / "tmp")) return names;
    for (const auto& entry : fs::directory_iterator(folder_ / "tmp")) names.push_back(entry.path());
    return names;
  }

  TemporaryFolder folder_;
  FaultySyscalls syscalls_{folder_.path().string()};
  LinuxFileManager files_{*Container::locate(folder_.path(), "player"), syscalls_};
};

TEST_F(FilesOfLinux, DocumentsThatWereThereAreNotLookedAtAgain) {
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  EXPECT_TRUE(fs::is_directory(folder_ / "Documents"));
  syscalls_.forget();

  ASSERT_EQ(files_.documentDirectory(), at("Documents"));

  EXPECT_THAT(syscalls_.calls(), IsEmpty());
}

TEST_F(FilesOfLinux, DocumentsThatCouldNotBeMadeAreTriedAgain) {
  writeFile(folder_ / "Documents", "squatter");
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  fs::remove(folder_ / "Documents");

  ASSERT_EQ(files_.documentDirectory(), at("Documents"));

  EXPECT_TRUE(fs::is_directory(folder_ / "Documents"));
}

TEST_F(FilesOfLinux, DocumentsRemovedLaterAreMadeAgainForADirectoryInThem) {
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  fs::remove(folder_ / "Documents");

  EXPECT_TRUE(files_.createDirectoryAtPath(at("Documents/TavloCache")));

  EXPECT_TRUE(fs::is_directory(folder_ / "Documents/TavloCache"));
  EXPECT_EQ(fs::status(folder_ / "Documents").permissions(), fs::perms::owner_all);
}

TEST_F(FilesOfLinux, DocumentsRemovedLaterAreMadeAgainForAFileInThem) {
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  fs::remove(folder_ / "Documents");

  EXPECT_TRUE(files_.writeToFileAtomically("image", at("Documents/a"), Durable::contents));

  EXPECT_EQ(readFile(folder_ / "Documents/a"), "image");
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(FilesOfLinux, DocumentsThatCannotBeMadeAgainLeaveTheFirstFailure) {
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  fs::remove(folder_ / "Documents");
  syscalls_.setHook([](const std::string& call) { return call == "mkdir Documents" ? EACCES : 0; });

  const auto created = files_.createDirectoryAtPath(at("Documents/a"));
  const auto written = files_.writeToFileAtomically("image", at("Documents/b"), Durable::contents);

  EXPECT_EQ(created.description(), "No such file or directory: " + at("Documents/a"));
  EXPECT_EQ(written.description(), "No such file or directory: " + at("Documents/b"));
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(FilesOfLinux, AFailureThatTellsOfNothingMissingIsFinal) {
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  syscalls_.setHook([](const std::string& call) {
    return call.starts_with("mkdir Documents/") || call.starts_with("rename") ? EACCES : 0;
  });

  EXPECT_FALSE(files_.createDirectoryAtPath(at("Documents/a")));
  EXPECT_FALSE(files_.writeToFileAtomically("image", at("Documents/b"), Durable::contents));

  EXPECT_EQ(syscalls_.count("mkdir Documents/a"), 1U);
  EXPECT_EQ(syscalls_.count("rename"), 1U);
}

TEST_F(FilesOfLinux, WhatIsMissingBesideDocumentsDoesNotBringThemBack) {
  ASSERT_EQ(files_.documentDirectory(), at("Documents"));
  fs::remove(folder_ / "Documents");

  EXPECT_FALSE(files_.createDirectoryAtPath(at("Documents2/a")));

  EXPECT_FALSE(fs::exists(folder_ / "Documents"));
  EXPECT_EQ(syscalls_.count("mkdir Documents2/a"), 1U);
}

TEST_F(FilesOfLinux, PathsThatNameNothingNeverReachTheSystem) {
  writeFile(folder_ / "a", "x");
  for (const Text& path :
       {Text(), Text(""), Text(at("a") + std::string(1, '\0')), Text(at("a") + std::string("\0b", 2))}) {
    const std::string reason = "no path: it is absent, empty or holds a NUL";
    EXPECT_EQ(files_.fileExistsAtPathIsDirectory(path), Existence::missing);
    EXPECT_FALSE(files_.fileExistsAtPath(path));
    EXPECT_EQ(files_.removeItemAtPath(path, Removal::anything).description(), reason);
    EXPECT_EQ(files_.removeItemAtPath(path, Removal::fileOnly).description(), reason);
    EXPECT_EQ(files_.createDirectoryAtPath(path).description(), reason);
    EXPECT_EQ(files_.contentsOfDirectoryAtPath(path), std::nullopt);
    EXPECT_EQ(files_.dataWithContentsOfFile(path), std::nullopt);
    EXPECT_EQ(files_.writeToFileAtomically("x", path, Durable::contents).description(), reason);
  }

  EXPECT_THAT(syscalls_.calls(), IsEmpty());
}

TEST_F(FilesOfLinux, AFailureTellsTheSystemsReasonAndThePath) {
  writeFile(folder_ / "file", "x");
  fs::create_directory(folder_ / "folder");

  EXPECT_EQ(files_.createDirectoryAtPath(at("file")).description(), "File exists: " + at("file"));
  EXPECT_EQ(files_.createDirectoryAtPath(at("a/b")).description(), "No such file or directory: " + at("a/b"));
  EXPECT_EQ(files_.removeItemAtPath(at("folder"), Removal::fileOnly).description(), "Is a directory: " + at("folder"));
  EXPECT_EQ(files_.removeItemAtPath(at("gone"), Removal::anything).description(),
            "No such file or directory: " + at("gone"));
  EXPECT_EQ(files_.writeToFileAtomically("x", at("folder"), Durable::contents).description(),
            "Is a directory: " + at("folder"));
  EXPECT_TRUE(fs::is_directory(folder_ / "folder"));
}

TEST_F(FilesOfLinux, AnImageIsFlushedAndItsNameIsNot) {
  ASSERT_TRUE(files_.writeToFileAtomically("image", at("a"), Durable::contents));

  EXPECT_EQ(syscalls_.count("fsync tmp/tavlo-#.tmp"), 1U);
  EXPECT_EQ(syscalls_.calls().back(), "close tmp/tavlo-#.tmp");
  EXPECT_EQ(readFile(folder_ / "a"), "image");
}

TEST_F(FilesOfLinux, AListIsFlushedAndItsNameTooAfterTheRename) {
  ASSERT_TRUE(files_.writeToFileAtomically("list", at("a"), Durable::name));

  const auto calls = syscalls_.calls();
  const auto renamed = std::find(calls.begin(), calls.end(), "rename tmp/tavlo-#.tmp a");
  ASSERT_NE(renamed, calls.end());
  EXPECT_EQ(std::count(renamed, calls.end(), "fsync ."), 1);
}

TEST_F(FilesOfLinux, DataComeFromRegularFilesOnly) {
  writeFile(folder_ / "file", std::string("a\0b", 3));
  writeFile(folder_ / "empty", "");
  fs::create_directory(folder_ / "folder");
  fs::create_symlink(folder_ / "file", folder_ / "link");
  ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);

  EXPECT_EQ(files_.dataWithContentsOfFile(at("file")), std::string("a\0b", 3));
  EXPECT_EQ(files_.dataWithContentsOfFile(at("link")), std::string("a\0b", 3));
  EXPECT_EQ(files_.dataWithContentsOfFile(at("empty")), "");
  for (const std::string& path : {at("folder"), at("fifo"), std::string("/dev/zero"), at("gone")}) {
    EXPECT_EQ(files_.dataWithContentsOfFile(path), std::nullopt) << path;
  }
}

TEST_F(FilesOfLinux, AFileBeyondTheLimitHasNoData) {
  writeFile(folder_ / "huge", "");
  fs::resize_file(folder_ / "huge", LinuxFileManager::kLargestFile + 1);

  EXPECT_EQ(files_.dataWithContentsOfFile(at("huge")), std::nullopt);

  EXPECT_EQ(errno, EFBIG);
}

struct Fault {
  const char* name;
  int error;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class FilesOfLinuxUnderFaults : public FilesOfLinux, public testing::WithParamInterface<Fault> {
 protected:
  // Fails the n-th call of the operation, for each n, until none fails any more. Afterwards the operation must
  // succeed. The number of calls.
  template <class Operation, class Check>
  int failEachCall(Operation operation, Check check) {
    for (int n = 1;; ++n) {
      bool failed = false;
      int left = n;
      syscalls_.setHook([&](const std::string&) {
        if (--left != 0) return 0;
        failed = true;
        return GetParam().error;
      });
      const bool succeeded = static_cast<bool>(operation());
      syscalls_.setHook(nullptr);
      check(succeeded, n);
      if (!failed) return n - 1;
      EXPECT_TRUE(operation()) << "healed after call " << n;
    }
  }
};

TEST_P(FilesOfLinuxUnderFaults, AnImageIsTheOldOneOrTheNewOne) {
  int round = 0;
  writeFile(folder_ / "image", "0");

  const int calls = failEachCall(
      [&] {
        ++round;
        return files_.writeToFileAtomically(std::to_string(round), at("image"), Durable::contents);
      },
      [&](bool succeeded, int n) {
        EXPECT_EQ(readFile(folder_ / "image"), std::to_string(succeeded ? round : round - 1)) << "call " << n;
      });

  EXPECT_GE(calls, 8);
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_P(FilesOfLinuxUnderFaults, ADirectoryIsMadeOrNot) {
  const int calls = failEachCall(
      [&] {
        fs::remove(folder_ / "folder");
        return files_.createDirectoryAtPath(at("folder"));
      },
      [&](bool succeeded, int n) { EXPECT_EQ(fs::exists(folder_ / "folder"), succeeded) << "call " << n; });

  EXPECT_EQ(calls, 1);
}

INSTANTIATE_TEST_SUITE_P(Errors, FilesOfLinuxUnderFaults,
                         testing::Values(Fault{"EIO", EIO}, Fault{"ENOSPC", ENOSPC}, Fault{"EDQUOT", EDQUOT},
                                         Fault{"EACCES", EACCES}, Fault{"EROFS", EROFS}, Fault{"EMFILE", EMFILE},
                                         Fault{"EINTR", EINTR}),
                         kCaseName);

TEST_F(FilesOfLinux, AFlushThatFailedIsNotTriedAgainOnTheSameFile) {
  syscalls_.setHook(failing("fsync tmp/", EIO));

  EXPECT_EQ(files_.writeToFileAtomically("x", at("a"), Durable::contents).description(),
            "Input/output error: " + at("a"));

  EXPECT_EQ(syscalls_.count("fsync tmp/tavlo-#.tmp"), 1U);
  EXPECT_FALSE(fs::exists(folder_ / "a"));
  EXPECT_THAT(temporaries(), IsEmpty());
}

TEST_F(FilesOfLinux, AShortWriteIsContinuedAndOneOfNothingFails) {
  for (const std::size_t size : {std::size_t{1}, std::size_t{4}}) {
    syscalls_.shortenOnce(size);
    EXPECT_TRUE(files_.writeToFileAtomically("bytes", at("a"), Durable::contents));
    EXPECT_EQ(readFile(folder_ / "a"), "bytes");
  }

  syscalls_.shortenOnce(0);
  EXPECT_FALSE(files_.writeToFileAtomically("other", at("a"), Durable::contents));
  EXPECT_EQ(readFile(folder_ / "a"), "bytes");
  EXPECT_THAT(temporaries(), IsEmpty());
}

}  // namespace
}  // namespace tavlo::test
