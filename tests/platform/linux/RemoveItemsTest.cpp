#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

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
TEST_F(ItemsOfADirectory, ANameThatIsNoEntryNeverLeadsElsewhere) {
  for (const char* const name : {"a", "outside"}) writeFile(folder_ / name, "x");
  fs::create_directory(folder_ / "in");
  writeFile(folder_ / "in/file", "x");

  files_.removeItemsOfDirectoryAtPath(at("in"), {at("outside"), std::string("file\0x", 6), ".", ".."});

  EXPECT_TRUE(fs::exists(folder_ / "outside"));
  EXPECT_TRUE(fs::exists(folder_ / "in/file"));
}

}  // namespace
}  // namespace tavlo::test
