#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "TavloUtility.h"
#include "tests/support/CaseName.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo {
namespace {

using test::InstalledPlatform;
using test::RecordingPlatform;
using testing::ElementsAre;
using testing::IsEmpty;

struct Identifier {
  const char* name;  // its key
  void (*set)(const Text&);
  Text (*get)();
};

class Identifiers : public testing::TestWithParam<Identifier> {
 protected:
  static void set(const Text& value) { GetParam().set(value); }
  static Text get() { return GetParam().get(); }

  InstalledPlatform<RecordingPlatform> platform_;
};

INSTANTIATE_TEST_SUITE_P(Each, Identifiers,
                         testing::Values(Identifier{"ApplicationId", TavloUtility::setAppIdToUserDefault,
                                                    TavloUtility::getAppIdFromUserDefault},
                                         Identifier{"OptionalId", TavloUtility::setOptionalIdToUserDefault,
                                                    TavloUtility::getOptionalIdFromUserDefault},
                                         Identifier{"SecurityKey", TavloUtility::setSecurityKeyToUserDefault,
                                                    TavloUtility::getSecurityKeyTFromUserDefault}),
                         test::kCaseName);

TEST_P(Identifiers, AreAbsentBeforeTheFirstSet) {
  const std::string read = "objectForKey:\"" + std::string(GetParam().name) + "\"";

  EXPECT_EQ(get(), std::nullopt);
  EXPECT_THAT(platform_->calls(), ElementsAre("standardUserDefaults", read));
}

TEST_P(Identifiers, AreStoredUnderTheirKeyAndWrittenOut) {
  set("value 1");

  const std::string stored = "setObject:\"value 1\" forKey:\"" + std::string(GetParam().name) + "\"";
  EXPECT_THAT(platform_->calls(), ElementsAre("standardUserDefaults", stored, "standardUserDefaults", "synchronize"));
  EXPECT_EQ(platform_->store().stored().size(), 1U);
  EXPECT_EQ(platform_->store().stored().at(GetParam().name), Value("value 1"));
}

TEST_P(Identifiers, AreReplacedByTheNextValue) {
  set("old");
  set("new");

  EXPECT_EQ(get(), "new");
}

TEST_P(Identifiers, AbsentAndEmptyAreIgnoredWithoutTouchingTheStore) {
  set("kept");
  platform_->forget();

  set("");
  set(std::nullopt);

  EXPECT_THAT(platform_->calls(), IsEmpty());
  EXPECT_EQ(get(), "kept");
}

TEST_P(Identifiers, AreNeverTrimmedOrChecked) {
  for (const std::string& value : {std::string(" "), std::string("\n"), std::string("a\0b", 3), std::string("\xFF")}) {
    set(value);

    EXPECT_EQ(get(), value);
  }
}

TEST_P(Identifiers, DoNotTouchOneAnother) {
  const test::MemoryUserDefaults::Entries all = {
      {"ApplicationId", "app"}, {"OptionalId", "optional"}, {"SecurityKey", "security"}};
  TavloUtility::setAppIdToUserDefault("app");
  TavloUtility::setOptionalIdToUserDefault("optional");
  TavloUtility::setSecurityKeyToUserDefault("security");
  EXPECT_EQ(platform_->store().stored(), all);

  set("changed");

  auto changed = all;
  changed[GetParam().name] = "changed";
  EXPECT_EQ(platform_->store().stored(), changed);
}

TEST_P(Identifiers, AreThereAfterARestart) {
  const auto disk = std::make_shared<test::MemoryUserDefaults::Disk>();
  platform::install(std::make_shared<RecordingPlatform>(disk));
  set("kept");

  platform::install(std::make_shared<RecordingPlatform>(disk));

  EXPECT_EQ(get(), "kept");
}

TEST_P(Identifiers, AnswerTheNewValueAlsoWhenItCouldNotBeWrittenOut) {
  set("old");
  platform_->store().breakDisk(true);

  set("new");

  EXPECT_EQ(get(), "new");
  EXPECT_EQ(platform_->store().stored().at(GetParam().name), Value("old"));
}

TEST_P(Identifiers, OfAnotherKindAreAnsweredInTheirTextForm) {
  const std::pair<Value, const char*> kinds[] = {
      {42, "42"}, {true, "1"}, {0.5, "0.5"}, {Value::data("bytes"), "bytes"}, {Value::list({"a", 1}), "(a, 1)"}};
  for (const auto& [value, text] : kinds) {
    platform_->store().setObjectForKey(value, GetParam().name);

    EXPECT_EQ(get(), text);
  }
}

TEST(IdentifiersWithoutAPlatform, AreAbsentAndSettingThemIsHarmless) {
  platform::install(nullptr);

  EXPECT_NO_THROW(TavloUtility::setAppIdToUserDefault("app"));
  EXPECT_EQ(TavloUtility::getAppIdFromUserDefault(), std::nullopt);
}

// An exit handler that was registered before the first use runs after everything that was made later is gone.
TEST(IdentifiersWithoutAPlatform, CanBeUsedWhileTheProcessExits) {
  const auto useAtExit = [] {
    std::atexit([] {
      TavloUtility::setAppIdToUserDefault("app");
      if (TavloUtility::getAppIdFromUserDefault()) std::abort();
    });
    TavloUtility::setAppIdToUserDefault("app");
    std::exit(7);
  };

  EXPECT_EXIT(useAtExit(), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace tavlo
