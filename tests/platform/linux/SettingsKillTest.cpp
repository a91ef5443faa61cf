// A process that dies at any system call of a setter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TavloUtility.h"
#include "tests/platform/linux/SettingsFixture.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

using testing::IsEmpty;

constexpr int kKilled = 9;

// A platform whose settings are the store that it is given.
class StorePlatform final : public platform::Platform {
 public:
  explicit StorePlatform(platform::UserDefaults& defaults) : defaults_(defaults) {}
  platform::UserDefaults& standardUserDefaults() override { return defaults_; }

 private:
  platform::UserDefaults& defaults_;
};

// The status that a child exits with after `work`.
template <class Work>
int runInChild(Work work) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct Identifier {
  std::string key;
  void (*set)(const Text&);
  Text (*get)();
};

const std::vector<Identifier> kIdentifiers{
    {"ApplicationId", TavloUtility::setAppIdToUserDefault, TavloUtility::getAppIdFromUserDefault},
    {"OptionalId", TavloUtility::setOptionalIdToUserDefault, TavloUtility::getOptionalIdFromUserDefault},
    {"SecurityKey", TavloUtility::setSecurityKeyToUserDefault, TavloUtility::getSecurityKeyTFromUserDefault},
};

struct KillScene {
  std::string name;
  Identifier id;
  std::optional<ValueMap> before;  // what lies in the file
};

std::vector<KillScene> killScenes() {
  const ValueMap file{{"ApplicationId", "old"}, {"OptionalId", "old"}, {"SecurityKey", "old"}};
  ValueMap full = file;
  for (int i = 0; i < 1000; ++i) full.append("foreign" + std::to_string(i), i);
  std::vector<KillScene> scenes;
  for (const Identifier& id : kIdentifiers) {
    scenes.push_back({id.key + "WithoutAFile", id, std::nullopt});
    scenes.push_back({id.key + "InAFile", id, file});
    scenes.push_back({id.key + "AmongAThousandForeignEntries", id, full});
  }
  return scenes;
}

// Kills a child at its n-th call; whether it came to that.
bool killAt(SettingsFixture& box, const Identifier& id, std::size_t n) {
  const int status = runInChild([&] {
    box.syscalls.setHook([n, i = std::size_t{0}](const std::string&) mutable {
      if (i++ == n) ::_exit(kKilled);
      return 0;
    });
    auto defaults = box.store();
    const InstalledPlatform<StorePlatform> installed(defaults);
    id.set("new");
  });
  EXPECT_TRUE(status == 0 || status == kKilled) << status;
  return status == kKilled;
}

class SettingsKillAt : public testing::TestWithParam<KillScene> {};

INSTANTIATE_TEST_SUITE_P(Scenes, SettingsKillAt, testing::ValuesIn(killScenes()),
                         [](const auto& row) { return row.param.name; });

TEST_P(SettingsKillAt, AnyCallLeavesTheOldValueOrTheNewOneAndAllElseAlone) {
  const auto& [name, id, before] = GetParam();
  const Value old = before ? Value::map(*before) : Value();
  ValueMap changed = before.value_or(ValueMap{});
  changed.set(Value(id.key), "new");
  ValueMap next = changed;
  next.set(Value(id.key), "next");
  bool killed = true;
  std::size_t points = 0;
  for (; killed; ++points) {
    SCOPED_TRACE(points);
    SettingsFixture box;
    if (before) box.put(*before);

    killed = killAt(box, id, points);

    const Value found = std::filesystem::exists(box.file()) ? box.entries() : Value();
    EXPECT_TRUE(found == Value::map(changed) || (killed && found == old));
    EXPECT_LE(box.temporaries().size(), 1U);

    // The next process is not held up by what the dead one left, and tidies it away.
    auto defaults = box.store(std::chrono::milliseconds(0));
    const InstalledPlatform<StorePlatform> installed(defaults);
    id.set("next");
    EXPECT_EQ(box.entries(), Value::map(next));
    EXPECT_EQ(id.get(), "next");
    EXPECT_THAT(box.temporaries(), IsEmpty());
  }
  EXPECT_GE(points, 38U);
  reached("T1", std::to_string(points - 1) + " kills at a setter's calls");
}

TEST(SettingsKill, AnAcknowledgedValueIsOnTheDiskWhateverTheProcessDoesNext) {
  SettingsFixture box;

  const int status = runInChild([&] {
    auto defaults = box.store();
    ::_exit(store(defaults, "k", "v") ? kKilled : 1);
  });

  EXPECT_EQ(status, kKilled);
  EXPECT_EQ(box.entries(), Value::map({{"k", "v"}}));
}

// A child that is forked while the lock is held shares the open file. The lock goes all the same.
TEST(SettingsKill, AChildForkedDuringAWriteDoesNotKeepTheLock) {
  SettingsFixture box;
  auto defaults = box.store(std::chrono::milliseconds(0));
  int hold[2];
  ASSERT_EQ(::pipe(hold), 0);
  pid_t child = -1;
  box.syscalls.setHook([&](const std::string& call) {
    if (call.starts_with("fsync tmp") && child < 0) {
      child = ::fork();
      if (child == 0) {
        ::close(hold[1]);
        char byte;
        const ssize_t ended = ::read(hold[0], &byte, 1);  // until the parent closes its end
        ::_exit(static_cast<int>(ended));
      }
    }
    return 0;
  });
  ASSERT_TRUE(store(defaults, "k", "1"));
  ASSERT_GT(child, 0);

  EXPECT_TRUE(store(defaults, "k", "2"));

  ::close(hold[1]);
  ::close(hold[0]);
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace tavlo::test
