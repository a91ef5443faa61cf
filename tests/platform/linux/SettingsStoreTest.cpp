// The settings store on a real file: where it lies, what it keeps, when it reads.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/SettingsStore.h"
#include "tests/platform/linux/SettingsFixture.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::hours;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SettingsStore, FilesAndFoldersAreTheUsersAlone) {
  SettingsFixture box;
  auto defaults = box.store();

  ASSERT_TRUE(store(defaults, "k", "v"));

  EXPECT_THAT(box.tree(), ElementsAre("Library", "Library/Preferences", "Library/Preferences/app.plist",
                                      "Library/Preferences/app.plist.lock", "tmp"));
  for (const char* const name : {"", "Library", "Library/Preferences", "tmp"}) {
    EXPECT_EQ(modeOf(box.container.folder() / name), 0700U) << name;
  }
  EXPECT_EQ(modeOf(box.file()), 0600U);
  EXPECT_EQ(modeOf(box.lockFile()), 0600U);
}

TEST(SettingsStore, ReadingMakesNothing) {
  SettingsFixture box;
  auto defaults = box.store();

  EXPECT_EQ(defaults.objectForKey("k"), std::nullopt);
  EXPECT_TRUE(defaults.synchronize());

  EXPECT_FALSE(fs::exists(box.container.folder()));
}

TEST(SettingsStore, TheFileIsABinaryPropertyListOfTheEntries) {
  SettingsFixture box;
  auto defaults = box.store();

  ASSERT_TRUE(store(defaults, "ApplicationId", "id-1"));

  EXPECT_TRUE(box.bytes().starts_with("bplist00"));
  EXPECT_EQ(box.entries(), Value::map({{"ApplicationId", "id-1"}}));
}

TEST(SettingsStore, ForeignEntriesOfEveryKindAndKeyStayInTheirOrder) {
  SettingsFixture box;
  const ValueMap foreign{{"date", Date{.seconds = 0.5}},
                         {"wide", Integer{.high = 5, .low = 6}},
                         {"narrow", Real{.value = 1.5, .narrow = true}},
                         {"uid", Uid{.index = 3}},
                         {"set", Value::set({1, 2})},
                         {"null", Value()},
                         {"nested", Value::map({{"list", Value::list({Value::data("\xff"), true, "x"})}})},
                         {7, "a key that is no text"}};
  box.put(foreign);
  auto defaults = box.store();

  ASSERT_TRUE(store(defaults, "k", "v"));

  ValueMap expected = foreign;
  expected.set("k", "v");
  const Value found = box.entries();
  EXPECT_EQ(found, Value::map(expected));
  ASSERT_TRUE(found.ifMap());
  EXPECT_EQ(found.ifMap()->begin()->first, Value("date"));
}

TEST(SettingsStore, AFileOfAnyModeIsTheUsersAloneAfterTheNextWrite) {
  SettingsFixture box;
  box.put(ValueMap{{"k", "old"}});
  fs::permissions(box.file(), fs::perms(0644));
  auto defaults = box.store();

  ASSERT_TRUE(store(defaults, "k", "new"));

  EXPECT_EQ(modeOf(box.file()), 0600U);
}

TEST(SettingsStore, AnAnswerFromAnUnchangedFileTakesOneSystemCall) {
  SettingsFixture box;
  box.put(ValueMap{{"k", "v"}});
  auto defaults = box.store();
  box.syscalls.turnClock(hours(1));
  ASSERT_EQ(defaults.objectForKey("k"), Value("v"));
  box.syscalls.forget();

  EXPECT_EQ(defaults.objectForKey("k"), Value("v"));
  EXPECT_EQ(defaults.objectForKey("other"), std::nullopt);

  EXPECT_THAT(box.syscalls.calls(),
              ElementsAre("stat Library/Preferences/app.plist", "stat Library/Preferences/app.plist"));
}

TEST(SettingsStore, AnAnswerToAPendingKeyTakesNoSystemCall) {
  SettingsFixture box;
  auto defaults = box.store();
  defaults.setObjectForKey("v", "k");

  EXPECT_EQ(defaults.objectForKey("k"), Value("v"));

  EXPECT_THAT(box.syscalls.calls(), IsEmpty());
}

// A file system's clock ticks every few milliseconds. A file replaced twice within one tick may come back with
// the same inode, size and times; its identity counts only once that tick is over.
TEST(SettingsStore, AFileThatChangedJustNowIsReadAnewForEachAnswer) {
  SettingsFixture box;
  box.put(ValueMap{{"k", "v"}});
  auto defaults = box.store();
  ASSERT_EQ(defaults.objectForKey("k"), Value("v"));
  box.syscalls.forget();

  EXPECT_EQ(defaults.objectForKey("k"), Value("v"));

  EXPECT_EQ(box.syscalls.count("read "), 2U);
}

TEST(SettingsStore, AFileFromAClockAheadIsReadAnewForEachAnswer) {
  SettingsFixture box;
  box.put(ValueMap{{"k", "v"}});
  auto defaults = box.store();
  box.syscalls.turnClock(hours(-1));
  ASSERT_EQ(defaults.objectForKey("k"), Value("v"));
  box.syscalls.forget();

  EXPECT_EQ(defaults.objectForKey("k"), Value("v"));

  EXPECT_EQ(box.syscalls.count("read "), 2U);
}

TEST(SettingsStore, AChangeByAnotherProcessIsSeenByTheNextAnswer) {
  SettingsFixture box;
  box.put(ValueMap{{"k", "one"}});
  auto defaults = box.store();
  box.syscalls.turnClock(hours(1));
  ASSERT_EQ(defaults.objectForKey("k"), Value("one"));

  box.put(ValueMap{{"k", "another"}});
  EXPECT_EQ(defaults.objectForKey("k"), Value("another"));

  fs::remove(box.file());
  EXPECT_EQ(defaults.objectForKey("k"), std::nullopt);
}

TEST(SettingsStore, OneSynchronizeWritesAllPendingChangesInOneFile) {
  SettingsFixture box;
  auto defaults = box.store();
  for (const char* const key : {"a", "b", "c"}) defaults.setObjectForKey(key, key);

  ASSERT_TRUE(defaults.synchronize());

  EXPECT_EQ(box.entries(), Value::map({{"a", "a"}, {"b", "b"}, {"c", "c"}}));
  EXPECT_EQ(box.syscalls.count("rename"), 1U);
}

TEST(SettingsStore, NothingPendingAsksTheSystemNothing) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "k", "v"));
  box.syscalls.forget();

  EXPECT_TRUE(defaults.synchronize());

  EXPECT_THAT(box.syscalls.calls(), IsEmpty());
}

// Setting a value again is no proof that it is on the disk: another process may have changed it.
TEST(SettingsStore, TheSameValueSetAgainIsWrittenAgain) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "k", "mine"));
  box.put(ValueMap{{"k", "theirs"}});

  ASSERT_TRUE(store(defaults, "k", "mine"));

  EXPECT_EQ(box.entries(), Value::map({{"k", "mine"}}));
}

TEST(SettingsStore, FoldersRemovedMeanwhileAreMadeAgain) {
  SettingsFixture box;
  auto defaults = box.store();
  ASSERT_TRUE(store(defaults, "a", "1"));
  fs::remove_all(box.container.folder());

  EXPECT_TRUE(store(defaults, "b", "2"));

  EXPECT_EQ(box.entries(), Value::map({{"b", "2"}}));
}

TEST(SettingsStore, ASymbolicLinkIsReadThroughAndReplacedByAFile) {
  SettingsFixture box;
  fs::create_directories(box.container.preferences());
  const std::string target = *property_list::encode(Value::map({{"k", "linked"}}));
  writeFile(box.folder / "elsewhere", target);
  fs::create_symlink(box.folder / "elsewhere", box.file());
  auto defaults = box.store();
  ASSERT_EQ(defaults.objectForKey("k"), Value("linked"));

  ASSERT_TRUE(store(defaults, "k", "own"));

  EXPECT_FALSE(fs::is_symlink(box.file()));
  EXPECT_EQ(box.entries(), Value::map({{"k", "own"}}));
  EXPECT_EQ(readFile(box.folder / "elsewhere"), target);
}

TEST(SettingsStore, AValueOrKeyThatNoPropertyListHoldsIsIgnoredWithALine) {
  SettingsFixture box;
  auto defaults = box.store();
  Value deep(1);
  for (std::size_t i = 0; i < property_list::kDeepest; ++i) deep = Value::list({deep});
  ASSERT_TRUE(store(defaults, "url", "before"));

  defaults.setObjectForKey(Value::url({.text = "http://example.com", .base = std::nullopt}), "url");
  defaults.setObjectForKey(deep, "deep");
  defaults.setObjectForKey("v", "\xff");

  EXPECT_TRUE(store(defaults, "k", "v"));
  EXPECT_EQ(box.entries(), Value::map({{"url", "before"}, {"k", "v"}}));
  EXPECT_THAT(box.recorder.consoleLines(),
              ElementsAre("TavloUtility: the setting \"url\" is no property list; it is ignored",
                          "TavloUtility: the setting \"deep\" is no property list; it is ignored",
                          "TavloUtility: the setting \"\xff\" is no property list; it is ignored"));
}

TEST(SettingsStore, ATextThatIsNotUtf8ComesBackAsItsBytes) {
  SettingsFixture box;
  auto defaults = box.store();

  ASSERT_TRUE(store(defaults, "k", "a\xff"));

  EXPECT_EQ(defaults.objectForKey("k"), Value::data("a\xff"));
}

}  // namespace
}  // namespace tavlo::test
