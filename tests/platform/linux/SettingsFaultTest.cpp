// Every system call of a write failing in turn.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/platform/linux/SettingsFixture.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const Value kOld = Value::map({{"foreign", 1}, {"k", "old"}});
const Value kNew = Value::map({{"foreign", 1}, {"k", "new"}});
const Value kAfter = Value::map({{"foreign", 1}, {"k", "after"}});

// A store that has written once, on a file with an entry of somebody else.
struct WrittenOnce {
  WrittenOnce() {
    box.put(ValueMap{{"foreign", 1}});
    EXPECT_TRUE(store(defaults, "k", "old"));
    box.syscalls.forget();
  }
  SettingsFixture box;
  linux_platform::SettingsStore defaults = box.store();
};

TEST(SettingsFaults, AWriteMakesTheseCallsInThisOrder) {
  WrittenOnce scene;

  ASSERT_TRUE(store(scene.defaults, "k", "new"));

  EXPECT_THAT(scene.box.syscalls.calls(),
              ElementsAre("stat .", "stat Library", "stat Library/Preferences", "stat .", "stat tmp",  //
                          "open Library/Preferences/app.plist.lock", "flock Library/Preferences/app.plist.lock",
                          "fstat Library/Preferences/app.plist.lock",  //
                          "open Library/Preferences/app.plist", "fstat Library/Preferences/app.plist",
                          "read Library/Preferences/app.plist", "read Library/Preferences/app.plist",
                          "close Library/Preferences/app.plist",  //
                          "folderNames tmp", "open tmp/tavlo-#.tmp", "flock tmp/tavlo-#.tmp", "fstat tmp/tavlo-#.tmp",
                          "write tmp/tavlo-#.tmp", "fsync tmp/tavlo-#.tmp",
                          "rename tmp/tavlo-#.tmp Library/Preferences/app.plist", "open Library/Preferences",
                          "fsync Library/Preferences", "close Library/Preferences", "close tmp/tavlo-#.tmp",  //
                          "flock Library/Preferences/app.plist.lock", "close Library/Preferences/app.plist.lock"));
}

struct Fault {
  std::string name;
  int error;
};

class SettingsFault : public testing::TestWithParam<Fault> {};

INSTANTIATE_TEST_SUITE_P(Errors, SettingsFault,
                         testing::Values(Fault{"EIO", EIO}, Fault{"ENOSPC", ENOSPC}, Fault{"EDQUOT", EDQUOT},
                                         Fault{"EACCES", EACCES}, Fault{"EROFS", EROFS}, Fault{"EMFILE", EMFILE},
                                         Fault{"EINTR", EINTR}),
                         [](const auto& row) { return row.param.name; });

// An error is harmless where its call is only tidying up, and an interruption everywhere but in fsync.
bool isHarmless(const std::string& call, int error) {
  if (call.starts_with("fsync")) return false;
  return error == EINTR || call.starts_with("close") || call.starts_with("folderNames");
}

// The second call on the lock gives it back; without it the lock goes with the file that is closed next.
bool isUnlocking(const std::string& call, const FaultySyscalls& syscalls) {
  return call == "flock Library/Preferences/app.plist.lock" && syscalls.count(call) == 2;
}

bool isAfterRename(const std::string& call) {
  return call == "open Library/Preferences" || call == "fsync Library/Preferences";
}

TEST_P(SettingsFault, AtAnyCallOfAWriteLeavesOneFileWholeAndTheNextWriteGoesThrough) {
  const int error = GetParam().error;
  std::size_t met = 0;
  for (std::size_t n = 0;; ++n) {
    WrittenOnce scene;
    std::string failed;
    scene.box.syscalls.setHook([&, i = std::size_t{0}](const std::string& call) mutable {
      if (i++ != n) return 0;
      failed = call;
      return error;
    });

    const bool written = store(scene.defaults, "k", "new");

    scene.box.syscalls.setHook(nullptr);
    if (failed.empty()) break;
    SCOPED_TRACE(failed);
    ++met;
    EXPECT_EQ(written, isHarmless(failed, error) || isUnlocking(failed, scene.box.syscalls));
    EXPECT_EQ(scene.box.entries(), written || isAfterRename(failed) ? kNew : kOld);
    EXPECT_EQ(scene.defaults.objectForKey("k"), Value("new"));
    EXPECT_THAT(scene.box.temporaries(), IsEmpty());

    EXPECT_TRUE(scene.defaults.synchronize());
    EXPECT_EQ(scene.box.entries(), kNew);
    EXPECT_TRUE(store(scene.defaults, "k", "after"));
    EXPECT_EQ(scene.box.entries(), kAfter);
    EXPECT_THAT(scene.box.temporaries(), IsEmpty());
    EXPECT_THAT(scene.box.recorder.consoleLines(), IsEmpty());
  }
  EXPECT_EQ(met, 26U);
  reached("T3", std::to_string(met) + " faults of calls for the settings");
}

// The first write of a process, in a container that is not there at all. At the calls
// listed a folder is opened above one that was there already; that it cannot be read is no failure.
const std::set<std::size_t> kOpenAboveAnOldFolder{2, 11, 20, 28, 33};

TEST_P(SettingsFault, AtAnyCallOfAFirstWriteLeavesNoHalfFileAndTheNextWriteGoesThrough) {
  const int error = GetParam().error;
  std::size_t met = 0;
  for (std::size_t n = 0;; ++n) {
    SettingsFixture box;
    auto defaults = box.store();
    std::string failed;
    box.syscalls.setHook([&, i = std::size_t{0}](const std::string& call) mutable {
      if (i++ != n) return 0;
      failed = call;
      return error;
    });

    const bool written = store(defaults, "k", "v");

    box.syscalls.setHook(nullptr);
    if (failed.empty()) break;
    SCOPED_TRACE(failed);
    ++met;
    const bool aboveIsAnothers = error == EACCES && kOpenAboveAnOldFolder.contains(n);
    EXPECT_EQ(written, isHarmless(failed, error) || isUnlocking(failed, box.syscalls) || aboveIsAnothers);
    EXPECT_EQ(std::filesystem::exists(box.file()), written || isAfterRename(failed));
    EXPECT_THAT(box.temporaries(), IsEmpty());

    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(box.entries(), Value::map({{"k", "v"}}));
    EXPECT_THAT(box.temporaries(), IsEmpty());
    EXPECT_THAT(box.recorder.consoleLines(), IsEmpty());
  }
  EXPECT_EQ(met, 57U);
  reached("T3", std::to_string(met) + " faults of calls for the settings");
}

// Removing the temporary fails as well: the next write sweeps it away.
TEST(SettingsFaults, ATemporaryThatCannotBeRemovedGoesWithTheNextWrite) {
  WrittenOnce scene;
  scene.box.syscalls.setHook(
      [](const std::string& call) { return call.starts_with("rename") || call.starts_with("unlink") ? EIO : 0; });
  ASSERT_FALSE(store(scene.defaults, "k", "new"));
  ASSERT_THAT(scene.box.temporaries(), SizeIs(1));
  scene.box.syscalls.setHook(nullptr);

  EXPECT_TRUE(scene.defaults.synchronize());

  EXPECT_THAT(scene.box.temporaries(), IsEmpty());
  EXPECT_EQ(scene.box.entries(), kNew);
}

// After a failed fsync the kernel may count the lost pages as clean: a second one on the same file would
// succeed and prove nothing.
TEST(SettingsFaults, AFailedFsyncIsFinalForItsTemporary) {
  WrittenOnce scene;
  for (const int error : {EIO, ENOSPC, EINTR}) {
    scene.box.syscalls.setHook(failing("fsync tmp/tavlo-#.tmp", error));
    scene.box.syscalls.forget();

    EXPECT_FALSE(store(scene.defaults, "k", "new"));

    EXPECT_EQ(scene.box.syscalls.count("fsync"), 1U);
    EXPECT_EQ(scene.box.syscalls.count("unlink tmp/tavlo-#.tmp"), 1U);
    EXPECT_EQ(scene.box.entries(), kOld);
  }
  scene.box.syscalls.forget();
  EXPECT_TRUE(scene.defaults.synchronize());
  EXPECT_EQ(scene.box.syscalls.count("write tmp/tavlo-#.tmp"), 1U);
  EXPECT_EQ(scene.box.entries(), kNew);
}

TEST(SettingsFaults, AfterARenameThatIsNotKnownToLastTheNextSynchronizeWritesAgain) {
  WrittenOnce scene;
  scene.box.syscalls.setHook(failing("fsync Library/Preferences", EIO));
  ASSERT_FALSE(store(scene.defaults, "k", "new"));
  ASSERT_EQ(scene.box.entries(), kNew);
  scene.box.syscalls.forget();

  EXPECT_TRUE(scene.defaults.synchronize());

  EXPECT_THAT(scene.box.syscalls.calls(), Contains("fsync Library/Preferences"));
}

TEST(SettingsFaults, AShortWriteIsContinuedAndOneOfNothingFails) {
  const std::size_t size = property_list::encode(kNew)->size();
  struct Row {
    std::size_t written;
    bool succeeds;
  };
  for (const Row& row : {Row{0, false}, Row{1, true}, Row{size / 2, true}, Row{size - 1, true}}) {
    SCOPED_TRACE(row.written);
    WrittenOnce scene;
    scene.box.syscalls.shortenOnce(row.written);

    EXPECT_EQ(store(scene.defaults, "k", "new"), row.succeeds);

    EXPECT_EQ(scene.box.entries(), row.succeeds ? kNew : kOld);
    EXPECT_THAT(scene.box.temporaries(), IsEmpty());
    EXPECT_TRUE(scene.defaults.synchronize());
    EXPECT_EQ(scene.box.entries(), kNew);
  }
}

TEST(SettingsFaults, ADiskThatFillsUpAfterAShortWriteLeavesTheOldFile) {
  WrittenOnce scene;
  scene.box.syscalls.shortenOnce(10);
  scene.box.syscalls.setHook(failing("write", ENOSPC, 2));

  EXPECT_FALSE(store(scene.defaults, "k", "new"));

  EXPECT_EQ(scene.box.entries(), kOld);
  EXPECT_THAT(scene.box.temporaries(), IsEmpty());
}

TEST(SettingsFaults, AFileReadByteByByteIsReadWhole) {
  WrittenOnce scene;
  scene.box.syscalls.shortenReads(1);

  EXPECT_EQ(scene.defaults.objectForKey("k"), Value("old"));
  EXPECT_EQ(scene.box.syscalls.count("read"), property_list::encode(kOld)->size() + 1);
}

}  // namespace
}  // namespace tavlo::test
