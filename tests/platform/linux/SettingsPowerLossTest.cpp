// What a crash of the machine can leave, at each moment of three consecutive sets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include "tests/platform/linux/CrashSyscalls.h"
#include "tests/platform/linux/SettingsFixture.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

using Broken = CrashSyscalls::Broken;
using linux_platform::SettingsStore;

constexpr int kSets = 3;

// Sets "k" to 1, 2, 3 on the modelled disk and judges every state that a crash can leave: it must be a file
// that reads as a number between the last acknowledged and the last started one. Where the whole disk is judged, a
// new process finds that number on it, and sets another one and leaves no temporary.
class PowerLoss {
 public:
  explicit PowerLoss(bool fileBefore, Broken broken = Broken::nothing) : syscalls_(folder_.path(), broken) {
    if (fileBefore) {
      std::filesystem::create_directories(container_.preferences());
      const std::string bytes = *property_list::encode(Value::map({{"foreign", "x"}, {"k", 0}}));
      writeFile(container_.settingsFile(), bytes);
      syscalls_.assume(container_.settingsFile(), bytes);
    }
    hasForeign_ = fileBefore;
    syscalls_.setBeforeEach([this] { judge(); });
  }

  // One process after another, each for one set. The first ones die before their n-th change of the disk; whether
  // the last of these came to it.
  bool setAll(const std::vector<std::size_t>& deaths = {}) {
    bool died = false;
    for (started_ = 1; started_ <= kSets; ++started_) {
      const auto process = static_cast<std::size_t>(started_) - 1;
      if (process < deaths.size()) syscalls_.dieBefore(deaths[process]);
      SettingsStore defaults(container_, recorder_.console(), syscalls_);
      if (store(defaults, "k", started_)) acknowledged_ = started_;
      if (process < deaths.size()) died = syscalls_.isDead();
      syscalls_.comeBack();
    }
    started_ = kSets;
    judge();
    return died;
  }

  void judgeWholeDisks() { judgesDisks_ = true; }

  [[nodiscard]] int acknowledged() const { return acknowledged_; }
  [[nodiscard]] std::size_t states() const { return states_.size(); }
  [[nodiscard]] std::size_t disks() const { return disks_.size(); }
  [[nodiscard]] const std::vector<std::string>& violations() const { return violations_; }

 private:
  void judge() {
    for (const auto& contents : syscalls_.possible(container_.settingsFile())) {
      states_.insert(contents);
      const int found = valueIn(contents);
      if (found < acknowledged_ || found > started_) {
        violations_.push_back(std::to_string(found) + " after " + std::to_string(acknowledged_));
      }
    }
    if (!judgesDisks_) return;
    for (const auto& disk : syscalls_.possibleTrees()) {
      disks_.insert(disk);
      if (judged_.emplace(acknowledged_, started_, disk).second) judgeDisk(disk);
    }
  }

  void judgeDisk(const CrashSyscalls::Tree& disk) {
    const TemporaryFolder folder(TemporaryFolder::inMemory());
    for (const auto& [path, contents] : disk) {
      const auto copy = folder / path.lexically_relative(folder_.path());
      contents ? writeFile(copy, *contents) : static_cast<void>(std::filesystem::create_directory(copy));
    }
    const auto container = *linux_platform::Container::locate(folder / "above/box", "app");
    RecordingPlatform recorder;
    SettingsStore defaults(container, recorder.console());
    const auto value = defaults.objectForKey("k");
    const int found = value ? static_cast<int>(value->ifInteger()->low) : 0;
    const bool isForeignThere = !hasForeign_ || defaults.objectForKey("foreign") == Value("x");
    const bool isSet = store(defaults, "k", "next");
    const bool isTidy = std::filesystem::is_empty(container.temporary()) && recorder.consoleLines().empty();
    if (found >= acknowledged_ && found <= started_ && isForeignThere && isSet && isTidy) return;
    violations_.push_back("a disk with " + std::to_string(found) + " after " + std::to_string(acknowledged_));
  }

  // -1 for a file that is damaged or has lost what was there before.
  [[nodiscard]] int valueIn(const CrashSyscalls::Contents& contents) const {
    if (!contents) return hasForeign_ ? -1 : 0;
    const auto root = property_list::decode(*contents).value;
    const ValueMap* const entries = root ? root->ifMap() : nullptr;
    if (!entries || !entries->find("k")) return -1;
    if (hasForeign_ && (!entries->find("foreign") || *entries->find("foreign") != Value("x"))) return -1;
    return static_cast<int>(entries->find("k")->ifInteger()->low);
  }

  TemporaryFolder folder_;
  linux_platform::Container container_ = *linux_platform::Container::locate(folder_ / "above/box", "app");
  RecordingPlatform recorder_;
  CrashSyscalls syscalls_;
  bool hasForeign_ = false;
  int started_ = 0;
  int acknowledged_ = 0;
  std::set<CrashSyscalls::Contents> states_;
  bool judgesDisks_ = false;
  std::set<CrashSyscalls::Tree> disks_;
  std::set<std::tuple<int, int, CrashSyscalls::Tree>> judged_;
  std::vector<std::string> violations_;
};

class SettingsPowerLoss : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(Scenes, SettingsPowerLoss, testing::Bool(),
                         [](const auto& row) { return row.param ? "OnAFile" : "OnNoFile"; });

TEST_P(SettingsPowerLoss, LeavesAnAcknowledgedValueOrALaterOne) {
  PowerLoss scene(GetParam());
  scene.judgeWholeDisks();

  static_cast<void>(scene.setAll());

  reached("T5", std::to_string(scene.disks()) + " distinct states of the disk, " + std::to_string(scene.states()) +
                    " of the file, " + std::to_string(scene.violations().size()) + " violations");
  EXPECT_EQ(scene.acknowledged(), kSets);
  EXPECT_THAT(scene.violations(), testing::IsEmpty());
  EXPECT_EQ(scene.states(), kSets + 1U);
}

TEST_P(SettingsPowerLoss, AfterTwoProcessesDiedAtAnyCallLeavesWhatTheThirdAcknowledged) {
  std::size_t points = 0;
  for (std::size_t first = 0, longest = 1; first < longest; ++first) {
    std::size_t second = 0;
    for (bool died = true; died; ++second, ++points) {
      SCOPED_TRACE(testing::Message() << first << ", " << second);
      PowerLoss scene(GetParam());

      died = scene.setAll({first, second});

      EXPECT_EQ(scene.acknowledged(), kSets);
      EXPECT_THAT(scene.violations(), testing::IsEmpty());
    }
    longest = std::max(longest, second);
  }
  reached("T5", std::to_string(points) + " pairs of deaths before the third set");
  EXPECT_GE(points, GetParam() ? 100U : 150U);
}

// The model itself: without one of the steps it finds a loss.
TEST_P(SettingsPowerLoss, WouldLoseAValueWithoutTheFsyncOfTheFile) {
  PowerLoss scene(GetParam(), Broken::noFsyncOfFiles);

  static_cast<void>(scene.setAll());

  EXPECT_THAT(scene.violations(), testing::Contains("-1 after 1"));
  reached("T5", std::to_string(scene.violations().size()) + " violations without the fsync of the file");
}

TEST_P(SettingsPowerLoss, WouldLoseAValueWithoutTheFsyncOfTheFolder) {
  PowerLoss scene(GetParam(), Broken::noFsyncOfFolders);

  static_cast<void>(scene.setAll());

  EXPECT_THAT(scene.violations(), testing::Contains("0 after 1"));
  reached("T5", std::to_string(scene.violations().size()) + " violations without the fsync of the folder");
}

TEST_P(SettingsPowerLoss, WouldLoseAValueWithTheFsyncAfterTheRename) {
  PowerLoss scene(GetParam(), Broken::fsyncAfterRename);

  static_cast<void>(scene.setAll());

  EXPECT_THAT(scene.violations(), testing::Contains("-1 after 0"));
  reached("T5", std::to_string(scene.violations().size()) + " violations with the fsync after the rename");
}

}  // namespace
}  // namespace tavlo::test
