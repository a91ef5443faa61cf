// A process that is killed at any time: what it was told to be written is there, and nothing is there by halves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <sstream>

#include "common/PropertyList.h"
#include "platform/linux/Container.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/SettingsStore.h"
#include "tests/integration/SealedBody.h"
#include "tests/support/KilledProgram.h"
#include "tests/support/RecordingPlatform.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;
using linux_platform::SettingsStore;
using std::chrono::microseconds;
using testing::Contains;

constexpr auto kKeys = std::to_array<const char*>({"ApplicationId", "OptionalId", "SecurityKey"});

// What a killed process said of one identifier. Each number is set once.
class History {
 public:
  explicit History(std::string initial) : done_{{std::move(initial), 0}} {}

  void started(const std::string& number) { started_[number] = ++lines_; }
  void done(const std::string& number) {
    done_[number] = ++lines_;
    lastStartOfADone_ = std::max(lastStartOfADone_, started_.at(number));
  }

  // The acknowledged values that no other acknowledged one came after, and all those that were only begun.
  [[nodiscard]] std::vector<std::string> legal() const {
    std::vector<std::string> values;
    for (const auto& [number, line] : started_) {
      if (!done_.contains(number)) values.push_back(number);
    }
    for (const auto& [number, line] : done_) {
      if (line >= lastStartOfADone_) values.push_back(number);
    }
    return values;
  }

 private:
  int lines_ = 0;
  int lastStartOfADone_ = 0;
  std::map<std::string, int> started_;
  std::map<std::string, int> done_;
};

class RandomKill : public testing::Test {
 protected:
  RandomKill() {
    fs::create_directories(container_.preferences());
    ValueMap entries;
    for (int i = 0; i < 20; ++i) entries.append("foreign" + std::to_string(i), i);
    foreign_ = entries;
    for (const char* const key : kKeys) entries.append(key, "0");
    writeFile(container_.settingsFile(), *property_list::encode(Value::map(entries)));
  }

  [[nodiscard]] microseconds anyDelay() { return microseconds(random_() % 20'000); }
  [[nodiscard]] std::size_t temporaries() const {
    if (!fs::exists(container_.temporary())) return 0;
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(container_.temporary()), {}));
  }

  // The three identifiers that are found; all else in the file must be as it was.
  [[nodiscard]] std::array<std::string, 3> found() const {
    const auto root = property_list::decode(readFile(container_.settingsFile())).value;
    if (!root || !root->ifMap()) return {"damaged", "damaged", "damaged"};
    for (const auto& [key, value] : foreign_) EXPECT_THAT(root->ifMap()->find(*key.ifText()), testing::Pointee(value));
    EXPECT_EQ(root->ifMap()->size(), foreign_.size() + kKeys.size());
    std::array<std::string, 3> values;
    for (std::size_t i = 0; i < kKeys.size(); ++i) values.at(i) = *root->ifMap()->find(kKeys.at(i))->ifText();
    return values;
  }

  // How many were acknowledged.
  int settingsRound(int threads) {
    const auto before = found();
    std::vector<History> histories(before.begin(), before.end());
    KilledProgram writer(TAVLO_KILLED_WRITER,
                         {"settings", container_.folder(), std::to_string(next_), std::to_string(threads)});
    int acknowledged = 0;
    for (const std::string& line : writer.killAfter(anyDelay())) {
      std::istringstream words(line);
      std::string event, number;
      std::size_t key = 0;
      words >> event >> key >> number;
      event == "done" ? histories.at(key).done(number) : histories.at(key).started(number);
      acknowledged += event == "done" ? 1 : 0;
      next_ = std::max<std::size_t>(next_, std::stoul(number) + 1);
    }

    const auto after = found();
    for (std::size_t key = 0; key < kKeys.size(); ++key) EXPECT_THAT(histories[key].legal(), Contains(after.at(key)));
    EXPECT_LE(temporaries(), 1U);
    return acknowledged;
  }

  // Every second time, so that a killed process finds what another one left as well.
  void setOnce() {
    SettingsStore defaults(container_, recorder_.console());
    defaults.setObjectForKey(foreign_.find("foreign1") ? *foreign_.find("foreign1") : Value(), "foreign1");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(temporaries(), 0U);
  }

  TemporaryFolder folder_{TemporaryFolder::inMemory()};
  Container container_ = *Container::locate(folder_.path(), "player");
  RecordingPlatform recorder_;  // for its console
  std::mt19937_64 random_{seed()};
  ValueMap foreign_;
  std::size_t next_ = 1;
};

TEST_F(RandomKill, LosesNoAcknowledgedIdentifierAndLeavesNoTemporaryAfterTheNextSet) {
  const int rounds = figure(40, 2'000);
  const int wanted = figure(200, 20'000);
  int acknowledged = 0;
  int round = 0;
  for (; (round < rounds || acknowledged < wanted) && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    acknowledged += settingsRound(round % 2 == 0 ? 1 : 8);
    if (round % 4 >= 2) setOnce();
  }

  reached("T2", std::to_string(round) + " kills, " + std::to_string(acknowledged) + " acknowledged sets, 0 lost");
}

TEST_F(RandomKill, LeavesNoHalfImageAndNoHarmedLog) {
  const int rounds = figure(30, 500);
  const fs::path cache = container_.documents() / "TavloCache";
  const std::string log(100'000, 'l');
  fs::create_directories(cache);
  writeFile(cache / "TavloLogFile.txt", log);
  int images = 0;
  int clearings = 0;
  int written = 0;
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    KilledProgram writer(TAVLO_KILLED_WRITER, {"images", container_.folder(), std::to_string(random_() % 1'000)});
    const auto lines = writer.killAfter(anyDelay());
    written += static_cast<int>(std::count(lines.begin(), lines.end(), "written"));
    clearings += static_cast<int>(std::count(lines.begin(), lines.end(), "cleared"));

    for (const auto& entry : fs::directory_iterator(cache)) {
      const std::string body = readFile(entry.path());
      const bool isLog = entry.path().filename() == "TavloLogFile.txt";
      EXPECT_TRUE(isLog ? body == log : isUnbroken(body)) << entry.path() << ": " << body.size() << " bytes";
      images += isLog ? 0 : 1;
    }
    EXPECT_TRUE(fs::exists(cache / "TavloLogFile.txt"));
    EXPECT_LE(temporaries(), 1U);
  }

  linux_platform::LinuxFileManager files(container_);
  ASSERT_TRUE(files.writeToFileAtomically("last", (cache / "last").string(), platform::Durable::contents));
  EXPECT_EQ(temporaries(), 0U);
  EXPECT_GT(images, 0);
  EXPECT_GT(clearings, 0);
  reached("T6e", std::to_string(rounds) + " kills among " + std::to_string(written) + " writes and " +
                     std::to_string(clearings) + " clearings, " + std::to_string(images) + " images found, all whole");
}

}  // namespace
}  // namespace tavlo::test
