// Files that hold no settings, and files that cannot be read.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/linux/SettingsFixture.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

std::string whole() { return *property_list::encode(Value::map({{"k", "old"}, {"foreign", 1}})); }

struct Damage {
  std::string name;
  std::string bytes;
};

class DamagedSettings : public testing::TestWithParam<Damage> {};

INSTANTIATE_TEST_SUITE_P(
    Files, DamagedSettings,
    testing::Values(Damage{"Empty", ""}, Damage{"OneBlank", " "}, Damage{"Text", "ApplicationId = x\n"},
                    Damage{"XmlForm", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>"},
                    Damage{"Zeros", std::string(4096, '\0')}, Damage{"HeaderOnly", "bplist00"},
                    Damage{"CutAtTheEnd", whole().substr(0, whole().size() - 1)},
                    Damage{"CutInTheMiddle", whole().substr(0, whole().size() / 2)},
                    Damage{"RootIsAList", *property_list::encode(Value::list({"k"}))},
                    Damage{"RootIsAText", *property_list::encode(Value("k"))},
                    Damage{"RootIsNull", *property_list::encode(Value())}),
    [](const auto& row) { return row.param.name; });

TEST_P(DamagedSettings, CountAsEmptyAndAreToldOnceAndLeftAloneByReading) {
  SettingsFixture box;
  box.put(GetParam().bytes);
  auto defaults = box.store();

  EXPECT_EQ(defaults.objectForKey("k"), std::nullopt);
  EXPECT_EQ(defaults.objectForKey("foreign"), std::nullopt);
  EXPECT_TRUE(defaults.synchronize());

  EXPECT_EQ(box.bytes(), GetParam().bytes);
  EXPECT_FALSE(fs::exists(box.damagedFile()));
  EXPECT_THAT(box.recorder.consoleLines(),
              ElementsAre(AllOf(StartsWith("TavloUtility: the settings file " + box.file().string() + " is damaged ("),
                                EndsWith("); it counts as empty, and the next write keeps it as " +
                                         box.file().string() + ".damaged"))));
}

TEST_P(DamagedSettings, AreKeptBesideByTheNextWrite) {
  SettingsFixture box;
  box.put(GetParam().bytes);
  auto defaults = box.store();

  EXPECT_TRUE(store(defaults, "k", "new"));

  EXPECT_EQ(box.entries(), Value::map({{"k", "new"}}));
  EXPECT_EQ(readFile(box.damagedFile()), GetParam().bytes);
  EXPECT_EQ(defaults.objectForKey("k"), Value("new"));
  EXPECT_EQ(box.recorder.consoleLines().size(), 1U);
}

TEST(DamagedSettingsFile, TheLineSaysWhatIsWrong) {
  SettingsFixture box;
  box.put(*property_list::encode(Value::list({})));
  auto defaults = box.store();

  EXPECT_EQ(defaults.objectForKey("k"), std::nullopt);

  EXPECT_THAT(box.recorder.consoleLines(), ElementsAre(testing::HasSubstr("is damaged (its root is no dictionary);")));
}

TEST(DamagedSettingsFile, ASecondDamageReplacesTheEvidenceOfTheFirstWithoutAnotherLine) {
  SettingsFixture box;
  auto defaults = box.store();
  box.put("first");
  ASSERT_TRUE(store(defaults, "k", "1"));
  box.put("second");

  EXPECT_TRUE(store(defaults, "k", "2"));

  EXPECT_EQ(readFile(box.damagedFile()), "second");
  EXPECT_EQ(box.entries(), Value::map({{"k", "2"}}));
  EXPECT_EQ(box.recorder.consoleLines().size(), 1U);
}

TEST(DamagedSettingsFile, IsNotOverwrittenWhenItCannotBeSetAside) {
  SettingsFixture box;
  box.put("damaged");
  auto defaults = box.store();
  box.syscalls.setHook(failing("rename Library/Preferences/app.plist ", EACCES));

  EXPECT_FALSE(store(defaults, "k", "v"));
  EXPECT_EQ(box.bytes(), "damaged");

  EXPECT_TRUE(defaults.synchronize());
  EXPECT_EQ(readFile(box.damagedFile()), "damaged");
  EXPECT_EQ(box.entries(), Value::map({{"k", "v"}}));
}

TEST(DamagedSettingsFile, ItsNewNameIsDurableBeforeTheNewFileIsWritten) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "k", "v"));
  box.put("damaged");
  box.syscalls.forget();

  ASSERT_TRUE(store(defaults, "k", "v"));

  const auto calls = box.syscalls.calls();
  const auto aside = std::find(calls.begin(), calls.end(),
                               "rename Library/Preferences/app.plist Library/Preferences/app.plist.damaged");
  ASSERT_LT(std::distance(aside, calls.end()), 20);
  EXPECT_EQ(
      std::vector(aside + 1, aside + 4),
      (std::vector<std::string>{"open Library/Preferences", "fsync Library/Preferences", "close Library/Preferences"}));
}

// ---- Unreadable: nothing is known about what lies there, so nothing is replaced. ----

struct Obstacle {
  std::string name;
  std::function<void(SettingsFixture&)> put;
};

class UnreadableSettings : public testing::TestWithParam<Obstacle> {};

void failEachRead(SettingsFixture& box, const std::string& call, int error) {
  box.put(ValueMap{{"other", "old"}});
  box.syscalls.setHook([=](const std::string& made) { return made == call ? error : 0; });
}

const std::string kFile = "Library/Preferences/app.plist";

INSTANTIATE_TEST_SUITE_P(
    Obstacles, UnreadableSettings,
    testing::Values(Obstacle{"NoRightToOpen", [](SettingsFixture& box) { failEachRead(box, "open " + kFile, EACCES); }},
                    Obstacle{"NoDescriptorLeft",
                             [](SettingsFixture& box) { failEachRead(box, "open " + kFile, EMFILE); }},
                    Obstacle{"NoStatus", [](SettingsFixture& box) { failEachRead(box, "fstat " + kFile, EIO); }},
                    Obstacle{"BadDisk", [](SettingsFixture& box) { failEachRead(box, "read " + kFile, EIO); }},
                    Obstacle{"Folder", [](SettingsFixture& box) { fs::create_directories(box.file()); }},
                    Obstacle{"Fifo",
                             [](SettingsFixture& box) {
                               fs::create_directories(box.container.preferences());
                               ASSERT_EQ(::mkfifo(box.file().c_str(), 0600), 0);
                             }},
                    Obstacle{"Device",
                             [](SettingsFixture& box) {
                               fs::create_directories(box.container.preferences());
                               fs::create_symlink("/dev/zero", box.file());
                             }},
                    Obstacle{"TooLarge",
                             [](SettingsFixture& box) {
                               box.put("x");
                               fs::resize_file(box.file(), (64U << 20U) + 1U);
                             }}),
    [](const auto& row) { return row.param.name; });

TEST_P(UnreadableSettings, AnswerPendingKeysOnlyAndAreNeverReplaced) {
  SettingsFixture box;
  GetParam().put(box);
  auto defaults = box.store();
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(::lstat(box.file().c_str(), &before), 0);

  EXPECT_FALSE(store(defaults, "k", "new"));

  EXPECT_EQ(defaults.objectForKey("k"), Value("new"));
  EXPECT_EQ(defaults.objectForKey("other"), std::nullopt);
  ASSERT_EQ(::lstat(box.file().c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);
  EXPECT_FALSE(fs::exists(box.damagedFile()));
  EXPECT_THAT(box.temporaries(), IsEmpty());
  EXPECT_THAT(box.recorder.consoleLines(), IsEmpty());
}

TEST_P(UnreadableSettings, TakeThePendingChangesOnceTheObstacleIsGone) {
  SettingsFixture box;
  GetParam().put(box);
  auto defaults = box.store();
  ASSERT_FALSE(store(defaults, "k", "new"));

  box.syscalls.setHook(nullptr);
  fs::remove(box.file());

  EXPECT_TRUE(defaults.synchronize());
  EXPECT_EQ(box.entries(), Value::map({{"k", "new"}}));
}

TEST(LargeSettingsFile, OfTheLargestSizeIsStillRead) {
  SettingsFixture box;
  box.put("x");
  fs::resize_file(box.file(), 64U << 20U);
  auto defaults = box.store();

  EXPECT_TRUE(store(defaults, "k", "v"));  // read as damaged, that is, not refused for its size

  EXPECT_EQ(fs::file_size(box.damagedFile()), 64U << 20U);
}

TEST(LargeSettingsFile, IsNotWrittenLargerThanItWouldBeRead) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "k", "small"));

  EXPECT_FALSE(store(defaults, "k", Value::data(std::string(64U << 20U, 'x'))));
  EXPECT_EQ(box.entries(), Value::map({{"k", "small"}}));

  EXPECT_TRUE(store(defaults, "k", "small again"));
}

TEST(LargeSettingsFile, ThatGrowsWhileItIsReadIsGivenUpAtTheLimit) {
  SettingsFixture box;
  box.put("x");
  box.syscalls.setHook([&](const std::string& call) {
    if (call == "read " + kFile) fs::resize_file(box.file(), (64U << 20U) + 1U);
    return 0;
  });
  auto defaults = box.store();

  EXPECT_FALSE(store(defaults, "k", "v"));
  EXPECT_FALSE(fs::exists(box.damagedFile()));
}

}  // namespace
}  // namespace tavlo::test
