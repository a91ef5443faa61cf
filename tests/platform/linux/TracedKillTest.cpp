// A second opinion on SettingsKillTest.cpp: the kernel kills the process, at each of the real calls of a setter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdlib>
#include <map>
#include <regex>

#include "common/PropertyList.h"
#include "platform/linux/SettingsStore.h"
#include "tests/support/Python.h"
#include "tests/support/RecordingPlatform.h"
#include "tests/support/Scale.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;

const std::string kTraced =
    "open,openat,mkdir,rename,renameat,renameat2,fsync,flock,write,unlink,close,read,stat,newfstatat,fstat,getdents64";
constexpr auto kKeys = std::to_array<const char*>({"ApplicationId", "OptionalId", "SecurityKey"});

bool succeeds(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

// What lies in the file before.
enum class Before { nothing, identifiers, thousandForeign };

class TracedKill : public testing::Test {
 protected:
  void put(Before before) {
    fs::remove_all(container_.folder());
    fs::create_directories(container_.preferences());
    entries_ = ValueMap();
    if (before == Before::nothing) return;
    for (const char* const key : kKeys) entries_.append(key, "old");
    for (int i = 0; before == Before::thousandForeign && i < 1'000; ++i)
      entries_.append("foreign" + std::to_string(i), i);
    writeFile(container_.settingsFile(), *property_list::encode(Value::map(entries_)));
  }

  // Sets the identifier under the tracer, with more of its options.
  [[nodiscard]] bool trace(const std::string& options, std::size_t key) const {
    return succeeds("strace -f -qq -e trace=" + kTraced + " " + options + " " TAVLO_KILLED_WRITER " once " +
                    container_.folder().string() + " " + std::to_string(key) + " new");
  }

  // For each call of a setter how often the process makes it before the setter begins.
  [[nodiscard]] std::map<std::string, int> callsBefore(std::size_t key) const {
    EXPECT_TRUE(trace("-o " + (folder_ / "calls").string(), key));
    std::map<std::string, int> counts;
    std::map<std::string, int> before;
    bool inside = false;
    for (const std::string& line : splitLines(readFile(folder_ / "calls"))) {
      static const std::regex kCall("^(?:[0-9]+ +)?([a-z0-9_]+)\\((.*)$");
      std::smatch parts;
      if (!std::regex_match(line, parts, kCall)) continue;
      if (parts[2].str().starts_with("1, \"done ")) break;
      if (inside) before.try_emplace(parts[1], counts[parts[1]]);
      ++counts[parts[1]];
      if (parts[2].str().starts_with("1, \"started ")) inside = true;
    }
    return before;
  }

  // Whether the process was killed at its n-th call of the name.
  [[nodiscard]] bool killAt(const std::string& call, int n, std::size_t key) {
    const bool killed = !trace("-o /dev/null -e inject=" + call + ":signal=KILL:when=" + std::to_string(n), key);

    const Value old = Value::map(entries_);
    entries_.set(Value(kKeys.at(key)), "new");
    const auto root = property_list::decode(readFile(container_.settingsFile())).value;
    const Value found = root.value_or(fs::exists(container_.settingsFile()) ? Value("damaged") : Value::map({}));
    EXPECT_TRUE((killed && found == old) || found == Value::map(entries_));

    linux_platform::SettingsStore defaults(container_, recorder_.console(), linux_platform::Syscalls::real());
    defaults.setObjectForKey("next", kKeys.at(key));
    EXPECT_TRUE(defaults.synchronize());
    entries_.set(Value(kKeys.at(key)), "next");
    EXPECT_EQ(property_list::decode(readFile(container_.settingsFile())).value, Value::map(entries_));
    EXPECT_TRUE(fs::is_empty(container_.temporary()));
    return killed;
  }

  // How many kills there were, from the setter's first call of the name on until its runs end before such a call. Two
  // of them, since a sanitizer's own calls at the start of a process are not of the same number each time.
  [[nodiscard]] std::size_t killAtEach(const std::string& call, int before, Before file, std::size_t key) {
    constexpr int kSurvivals = 2;
    std::size_t kills = 0;
    for (int n = before + 1, survived = 0; survived < kSurvivals; ++n) {
      SCOPED_TRACE(call + " " + std::to_string(n));
      put(file);
      if (killAt(call, n, key))
        ++kills;
      else
        ++survived;
    }
    return kills;
  }

  TemporaryFolder folder_{TemporaryFolder::inMemory()};
  Container container_ = *Container::locate(folder_ / "box", "player");
  RecordingPlatform recorder_;  // for its console
  ValueMap entries_;
};

TEST_F(TracedKill, AtAnyCallLeavesTheOldIdentifierOrTheNewOneAndAllElseAlone) {
  if (!succeeds("strace -o /dev/null true")) GTEST_SKIP() << "strace is missing, or must not trace here";
  std::size_t kills = 0;
  const auto keys = static_cast<std::size_t>(figure(1, 3));
  for (const Before before : {Before::nothing, Before::identifiers, Before::thousandForeign}) {
    if (!atFullFigures() && before != Before::identifiers) continue;
    for (std::size_t key = 0; key < keys; ++key) {
      put(before);
      std::size_t ofThese = 0;
      for (const auto& [call, first] : callsBefore(key)) ofThese += killAtEach(call, first, before, key);
      EXPECT_GE(ofThese, 20U);
      kills += ofThese;
    }
  }

  reached("T1", std::to_string(kills) + " kills at a setter's calls by the kernel");
}

}  // namespace
}  // namespace tavlo::test
