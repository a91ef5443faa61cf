#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;
using linux_platform::LinuxFileManager;
using testing::ElementsAre;

class ItemsOfADirectory : public testing::Test {
 protected:
  [[nodiscard]] std::string at(const std::string& name) const { return (folder_ / name).string(); }

  TemporaryFolder folder_;
  FaultySyscalls syscalls_{folder_.path().string()};
  LinuxFileManager files_{*Container::locate(folder_.path(), "player"), syscalls_};
};

TEST_F(ItemsOfADirectory, ThatAreFilesTakeOneLookUpOfItAndACallEach) {
  for (const char* const name : {"a", "b", "kept"}) writeFile(folder_ / name, "x");

  files_.removeItemsOfDirectoryAtPath(folder_.path().string(), {"b", "a"});

  EXPECT_THAT(syscalls_.calls(), ElementsAre("open .", "unlinkat ./b", "unlinkat ./a", "close ."));
  EXPECT_TRUE(fs::exists(folder_ / "kept"));
}

TEST_F(ItemsOfADirectory, ThatFailStayAndTheOthersGo) {
  for (const char* const name : {"a", "b", "c"}) writeFile(folder_ / name, "x");
  syscalls_.setHook([](const std::string& call) { return call.ends_with("b") ? EPERM : 0; });

  files_.removeItemsOfDirectoryAtPath(folder_.path().string(), {"a", "b", "c"});

  EXPECT_FALSE(fs::exists(folder_ / "a"));
  EXPECT_TRUE(fs::exists(folder_ / "b"));
  EXPECT_FALSE(fs::exists(folder_ / "c"));
}

TEST_F(ItemsOfADirectory, OfOneThatCannotBeOpenedGoByTheirPaths) {
  for (const char* const name : {"a", "b"}) writeFile(folder_ / name, "x");
  syscalls_.setHook(failing("open", EMFILE));

  files_.removeItemsOfDirectoryAtPath(folder_.path().string(), {"a", "b"});

  EXPECT_THAT(syscalls_.calls(), ElementsAre("open .", "unlink a", "unlink b"));
  EXPECT_FALSE(fs::exists(folder_ / "a"));
}

// The system takes an absolute name for itself and a name with a NUL for the shorter one.
TEST_F(ItemsOfADirectory, ANameOfNoItemRemovesNothing) {
  fs::create_directory(folder_ / "in");
  for (const char* const name : {"outside", "in/file"}) writeFile(folder_ / name, "x");
  const std::vector<std::string> names = {at("outside"), "../outside", std::string("file\0x", 6), "./file", "", "/"};

  files_.removeItemsOfDirectoryAtPath(at("in"), names);
  EXPECT_THAT(syscalls_.calls(), ElementsAre("open in", "close in"));

  files_.removeItemsOfDirectoryAtPath(at("in"), {".", ".."});
  syscalls_.setHook(failing("open", EMFILE));
  files_.removeItemsOfDirectoryAtPath(at("in"), names);

  EXPECT_TRUE(fs::exists(folder_ / "outside"));
  EXPECT_TRUE(fs::exists(folder_ / "in/file"));
}

TEST_F(ItemsOfADirectory, AFolderGoesByItsPathInItsPlace) {
  fs::create_directories(folder_ / "b/deep");
  for (const char* const name : {"a", "b/deep/file", "c"}) writeFile(folder_ / name, "x");

  files_.removeItemsOfDirectoryAtPath(folder_.path().string(), {"c", "b", "a"});

  const auto calls = syscalls_.calls();
  EXPECT_THAT(std::vector(calls.begin(), calls.begin() + 5),
              ElementsAre("open .", "unlinkat ./c", "unlinkat ./b", "unlink b", "open b"));
  EXPECT_THAT(std::vector(calls.end() - 3, calls.end()), ElementsAre("close b", "unlinkat ./a", "close ."));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(ItemsOfADirectory, AnInterruptedCallIsMadeAgain) {
  writeFile(folder_ / "a", "x");
  syscalls_.setHook([interrupted = 0](const std::string& call) mutable {
    return !call.starts_with("close") && ++interrupted % 2 == 1 ? EINTR : 0;
  });

  files_.removeItemsOfDirectoryAtPath(folder_.path().string(), {"a"});

  EXPECT_THAT(syscalls_.calls(), ElementsAre("open .", "open .", "unlinkat ./a", "unlinkat ./a", "close ."));
  EXPECT_FALSE(fs::exists(folder_ / "a"));
}

TEST_F(ItemsOfADirectory, ALinkToItIsFollowedAndALinkInItIsNot) {
  fs::create_directories(folder_ / "real/kept");
  for (const char* const name : {"real/a", "real/kept/file"}) writeFile(folder_ / name, "x");
  fs::create_directory_symlink(folder_ / "real/kept", folder_ / "real/link");
  fs::create_directory_symlink(folder_ / "real", folder_ / "cache");

  files_.removeItemsOfDirectoryAtPath(at("cache"), {"a", "link"});

  EXPECT_THAT(syscalls_.calls(), ElementsAre("open cache", "unlinkat cache/a", "unlinkat cache/link", "close cache"));
  EXPECT_TRUE(fs::is_symlink(folder_ / "cache"));
  EXPECT_FALSE(fs::exists(folder_ / "real/a"));
  EXPECT_FALSE(fs::is_symlink(folder_ / "real/link"));
  EXPECT_TRUE(fs::exists(folder_ / "real/kept/file"));
}

// It stands for the time before the exchange, as if all had been removed then.
TEST_F(ItemsOfADirectory, ALinkThatTakesItsPlaceMeanwhileLeadsNoFileOfItElsewhere) {
  for (const char* const name : {"in", "other"}) {
    fs::create_directory(folder_ / name);
    for (const char* const file : {"a", "b"}) writeFile(folder_ / name / file, "x");
  }
  syscalls_.setHook([&](const std::string& call) {
    if (call != "unlinkat in/a") return 0;
    fs::rename(folder_ / "in", folder_ / "moved");
    fs::create_directory_symlink(folder_ / "other", folder_ / "in");
    return 0;
  });

  files_.removeItemsOfDirectoryAtPath(at("in"), {"a", "b"});

  EXPECT_TRUE(fs::is_empty(folder_ / "moved"));
  EXPECT_TRUE(fs::exists(folder_ / "other/a"));
  EXPECT_TRUE(fs::exists(folder_ / "other/b"));
}

TEST_F(ItemsOfADirectory, OfOneThatIsMadeAnewMeanwhileGoToo) {
  fs::create_directory(folder_ / "in");
  writeFile(folder_ / "in/a", "x");
  syscalls_.setHook([&](const std::string& call) {
    if (call != "unlinkat in/a") return 0;
    fs::remove_all(folder_ / "in");
    fs::create_directory(folder_ / "in");
    for (const char* const name : {"in/a", "in/new"}) writeFile(folder_ / name, "x");
    return 0;
  });

  files_.removeItemsOfDirectoryAtPath(at("in"), {"a"});

  EXPECT_FALSE(fs::exists(folder_ / "in/a"));
  EXPECT_TRUE(fs::exists(folder_ / "in/new"));
}

TEST_F(ItemsOfADirectory, ThatAnotherThreadRemovesOrMakesMeanwhileHinderNone) {
  for (const char* const name : {"a", "b", "c"}) writeFile(folder_ / name, "x");
  syscalls_.setHook([&](const std::string& call) {
    if (call != "unlinkat ./a") return 0;
    fs::remove(folder_ / "b");
    writeFile(folder_ / "new", "x");
    return 0;
  });

  files_.removeItemsOfDirectoryAtPath(folder_.path().string(), {"a", "b", "c"});

  EXPECT_FALSE(fs::exists(folder_ / "a"));
  EXPECT_FALSE(fs::exists(folder_ / "b"));
  EXPECT_FALSE(fs::exists(folder_ / "c"));
  EXPECT_TRUE(fs::exists(folder_ / "new"));
}

}  // namespace
}  // namespace tavlo::test
