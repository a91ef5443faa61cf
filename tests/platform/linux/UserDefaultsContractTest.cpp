// What holds for every settings store: the one on disk and the fake that other tests stand on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/platform/linux/SettingsFixture.h"

namespace tavlo::test {
namespace {

using linux_platform::SettingsStore;

// A place where settings last, which stores are opened on, as by one process after another.
class Place {
 public:
  Place() = default;
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  virtual ~Place() = default;
  [[nodiscard]] virtual std::unique_ptr<platform::UserDefaults> open() = 0;
  virtual void breakDisk(bool broken) = 0;
};

class OnDisk final : public Place {
 public:
  std::unique_ptr<platform::UserDefaults> open() override {
    return std::make_unique<SettingsStore>(fixture_.container, fixture_.recorder.console(), fixture_.syscalls);
  }
  void breakDisk(bool broken) override {
    fixture_.syscalls.setHook(
        [broken](const std::string& call) { return broken && call.starts_with("write") ? EIO : 0; });
  }

 private:
  SettingsFixture fixture_;
};

class InMemory final : public Place {
 public:
  std::unique_ptr<platform::UserDefaults> open() override { return std::make_unique<MemoryUserDefaults>(disk_); }
  void breakDisk(bool broken) override { disk_->broken = broken; }

 private:
  std::shared_ptr<MemoryUserDefaults::Disk> disk_ = std::make_shared<MemoryUserDefaults::Disk>();
};

struct Store {
  std::string name;
  std::function<std::unique_ptr<Place>()> make;
};

class UserDefaultsContract : public testing::TestWithParam<Store> {
 protected:
  std::unique_ptr<Place> place_ = GetParam().make();
  std::unique_ptr<platform::UserDefaults> defaults_ = place_->open();
};

INSTANTIATE_TEST_SUITE_P(Stores, UserDefaultsContract,
                         testing::Values(Store{"OnDisk", [] { return std::make_unique<OnDisk>(); }},
                                         Store{"InMemory", [] { return std::make_unique<InMemory>(); }}),
                         [](const auto& row) { return row.param.name; });

TEST_P(UserDefaultsContract, AKeyNeverSetIsAbsent) {
  EXPECT_EQ(defaults_->objectForKey("k"), std::nullopt);
  EXPECT_EQ(defaults_->objectForKey(""), std::nullopt);
}

TEST_P(UserDefaultsContract, AValueIsAnsweredAtOnceBeforeItIsWritten) {
  defaults_->setObjectForKey("one", "k");

  EXPECT_EQ(defaults_->objectForKey("k"), Value("one"));
}

TEST_P(UserDefaultsContract, AValueNotSynchronizedIsNotThereForTheNextProcess) {
  defaults_->setObjectForKey("one", "k");

  EXPECT_EQ(place_->open()->objectForKey("k"), std::nullopt);
}

TEST_P(UserDefaultsContract, ASynchronizedValueIsThereForTheNextProcess) {
  defaults_->setObjectForKey("one", "k");
  const bool synchronized = defaults_->synchronize();

  EXPECT_TRUE(synchronized);
  EXPECT_EQ(place_->open()->objectForKey("k"), Value("one"));
}

TEST_P(UserDefaultsContract, TheLastValueOfAKeyCounts) {
  ASSERT_TRUE(store(*defaults_, "k", "one"));
  ASSERT_TRUE(store(*defaults_, "k", "two"));

  EXPECT_EQ(defaults_->objectForKey("k"), Value("two"));
  EXPECT_EQ(place_->open()->objectForKey("k"), Value("two"));
}

TEST_P(UserDefaultsContract, KeysAreIndependentAndExact) {
  ASSERT_TRUE(store(*defaults_, "k", "small"));
  ASSERT_TRUE(store(*defaults_, "K", "large"));
  ASSERT_TRUE(store(*defaults_, "", "empty"));

  EXPECT_EQ(defaults_->objectForKey("k"), Value("small"));
  EXPECT_EQ(defaults_->objectForKey("K"), Value("large"));
  EXPECT_EQ(defaults_->objectForKey(""), Value("empty"));
  EXPECT_EQ(defaults_->objectForKey("k "), std::nullopt);
}

TEST_P(UserDefaultsContract, ValuesOfEveryKindComeBackAsTheyWere) {
  const std::vector<std::pair<std::string, Value>> values{
      {"null", Value()},
      {"boolean", Value(true)},
      {"integer", Value(-7)},
      {"large integer", Value(Integer{.high = 1, .low = 2})},
      {"real", Value(2.5)},
      {"narrow real", Value(Real{.value = 0.5, .narrow = true})},
      {"date", Value(Date{.seconds = 123.25})},
      {"text", Value("grün & blau")},
      {"empty text", Value("")},
      {"blank", Value(" ")},
      {"text with NUL", Value(std::string("a\0b", 3))},
      {"data", Value::data(std::string("\0\xff", 2))},
      {"uid", Value(Uid{.index = 300})},
      {"list", Value::list({Value("a"), Value(1)})},
      {"set", Value::set({Value("b")})},
      {"map", Value::map({{Value("x"), Value::map({{Value("y"), Value(false)}})}})},
  };
  for (const auto& [name, value] : values) defaults_->setObjectForKey(value, name);
  ASSERT_TRUE(defaults_->synchronize());

  const auto next = place_->open();
  for (const auto& [name, value] : values) EXPECT_EQ(next->objectForKey(name), value) << name;
}

TEST_P(UserDefaultsContract, NothingPendingSynchronizesEvenOnABrokenDisk) {
  place_->breakDisk(true);

  EXPECT_TRUE(defaults_->synchronize());
}

TEST_P(UserDefaultsContract, AfterAFailureTheValueIsAnsweredAndTheNextSynchronizeWritesIt) {
  ASSERT_TRUE(store(*defaults_, "k", "old"));
  place_->breakDisk(true);

  EXPECT_FALSE(store(*defaults_, "k", "new"));
  EXPECT_EQ(defaults_->objectForKey("k"), Value("new"));
  EXPECT_EQ(place_->open()->objectForKey("k"), Value("old"));

  place_->breakDisk(false);
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_EQ(place_->open()->objectForKey("k"), Value("new"));
}

TEST_P(UserDefaultsContract, TwoStoresOfOnePlaceSeeEachOthersValuesAndKeepThem) {
  const auto other = place_->open();
  ASSERT_TRUE(store(*defaults_, "mine", "1"));
  ASSERT_TRUE(store(*other, "theirs", "2"));

  EXPECT_EQ(defaults_->objectForKey("theirs"), Value("2"));
  EXPECT_EQ(other->objectForKey("mine"), Value("1"));
}

}  // namespace
}  // namespace tavlo::test
