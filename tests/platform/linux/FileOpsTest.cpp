#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/FileOps.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using namespace linux_platform;
using testing::UnorderedElementsAre;

struct FileOps : testing::Test {
  TemporaryFolder folder;
  FaultySyscalls syscalls{folder.path().string()};
};

TEST_F(FileOps, AnOpenFileIsNotInheritedByAProgramThatIsStarted) {
  const FileDescriptor file = openFile(syscalls, folder / "f", O_WRONLY | O_CREAT, 0600);

  ASSERT_TRUE(file);
  EXPECT_EQ(::fcntl(file.get(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(FileOps, AnInterruptedCallIsMadeAgainUntilItIsNot) {
  writeFile(folder / "f", "abc");
  int left = 5;
  syscalls.setHook([&](const std::string& call) { return call.starts_with("open") && --left > 0 ? EINTR : 0; });

  const FileDescriptor file = openFile(syscalls, folder / "f", O_RDONLY);

  EXPECT_TRUE(file);
  EXPECT_EQ(syscalls.count("open f"), 5U);
}

TEST_F(FileOps, AFileIsClosedOnceWhateverCloseSays) {
  writeFile(folder / "f", "abc");
  syscalls.setHook(failing("close", EINTR));
  {
    FileDescriptor file = openFile(syscalls, folder / "f", O_RDONLY);
    const FileDescriptor moved = std::move(file);
    ASSERT_TRUE(moved);
  }

  EXPECT_EQ(syscalls.count("close f"), 1U);
}

TEST_F(FileOps, ReadingStopsAboveTheLimitAndNotAtIt) {
  writeFile(folder / "f", std::string(40000, 'x'));
  struct Row {
    std::size_t limit;
    bool read;
  };
  for (const Row& row : {Row{40000, true}, Row{39999, false}, Row{0, false}}) {
    const FileDescriptor file = openFile(syscalls, folder / "f", O_RDONLY);

    const auto bytes = readWhole(syscalls, file.get(), row.limit);

    ASSERT_EQ(bytes.has_value(), row.read) << row.limit;
    if (bytes) {
      EXPECT_EQ(*bytes, std::string(40000, 'x'));
    } else {
      EXPECT_EQ(errno, EFBIG);
    }
  }
}

TEST_F(FileOps, NamesOfAFolderLeaveOutItselfAndItsParent) {
  for (const char* const name : {"a", ".hidden", "with\nnewline"}) writeFile(folder / name, "");

  const auto names = Syscalls::real().folderNames(folder.path().c_str());

  ASSERT_TRUE(names);
  EXPECT_THAT(*names, UnorderedElementsAre("a", ".hidden", "with\nnewline"));
  EXPECT_EQ(Syscalls::real().folderNames((folder / "missing").c_str()), std::nullopt);
}

TEST_F(FileOps, TheRealSystemAnswersForThisProcess) {
  Syscalls& real = Syscalls::real();
  fs::create_symlink("target of any length", folder / "link");

  EXPECT_EQ(real.readlink((folder / "link").c_str()), "target of any length");
  EXPECT_EQ(real.readlink((folder / "missing").c_str()), std::nullopt);
  ASSERT_EQ(::setenv("TAVLO_TEST_VARIABLE", "", 1), 0);
  EXPECT_EQ(real.environment("TAVLO_TEST_VARIABLE"), "");
  ASSERT_EQ(::unsetenv("TAVLO_TEST_VARIABLE"), 0);
  EXPECT_EQ(real.environment("TAVLO_TEST_VARIABLE"), std::nullopt);
  EXPECT_TRUE(real.passwordDatabaseHome().value_or("/").starts_with('/'));
}

}  // namespace
}  // namespace tavlo::test
