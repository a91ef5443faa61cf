// A platform that keeps its settings in memory and records what it is asked, in order:
//
//   standardUserDefaults
//   setObject:"id-1" forKey:"ApplicationId"    a value that is no text stands as (another kind)
//   objectForKey:"ApplicationId"
//   synchronize
//   console:<line>
//
//   const InstalledPlatform<RecordingPlatform> platform;
//   TavloUtility::setAppIdToUserDefault("id-1");
//   EXPECT_THAT(platform->calls(), ElementsAre(...));
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "tests/support/MemoryUserDefaults.h"

namespace tavlo::test {

class RecordingPlatform final : public platform::Platform {
 public:
  explicit RecordingPlatform(
      std::shared_ptr<MemoryUserDefaults::Disk> disk = std::make_shared<MemoryUserDefaults::Disk>())
      : store_(std::move(disk)) {}

  platform::UserDefaults& standardUserDefaults() override {
    calls_.add("standardUserDefaults");
    return recordedDefaults_;
  }
  platform::Console& console() override { return recordedConsole_; }

  // Everything asked so far, or only the console lines, without their prefix.
  [[nodiscard]] std::vector<std::string> calls() const { return calls_.all(); }
  [[nodiscard]] std::vector<std::string> consoleLines() const {
    constexpr std::string_view kPrefix = "console:";
    std::vector<std::string> lines;
    for (const std::string& call : calls()) {
      if (call.starts_with(kPrefix)) lines.push_back(call.substr(kPrefix.size()));
    }
    return lines;
  }
  void forget() { calls_.clear(); }

  // The store itself, to prepare and to look at without a record.
  [[nodiscard]] MemoryUserDefaults& store() { return store_; }

 private:
  class Calls {
   public:
    void add(std::string call) {
      const std::lock_guard lock(mutex_);
      calls_.push_back(std::move(call));
    }
    [[nodiscard]] std::vector<std::string> all() const {
      const std::lock_guard lock(mutex_);
      return calls_;
    }
    void clear() {
      const std::lock_guard lock(mutex_);
      calls_.clear();
    }

   private:
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
  };

  class RecordedDefaults final : public platform::UserDefaults {
   public:
    RecordedDefaults(Calls& calls, platform::UserDefaults& store) : calls_(calls), store_(store) {}

    std::optional<Value> objectForKey(std::string_view key) override {
      calls_.add("objectForKey:" + quoted(key));
      return store_.objectForKey(key);
    }
    void setObjectForKey(const Value& value, std::string_view key) override {
      const auto text = value.ifText();
      calls_.add("setObject:" + (text ? quoted(*text) : "(another kind)") + " forKey:" + quoted(key));
      store_.setObjectForKey(value, key);
    }
    bool synchronize() override {
      calls_.add("synchronize");
      return store_.synchronize();
    }

   private:
    static std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

    Calls& calls_;
    platform::UserDefaults& store_;
  };

  class RecordedConsole final : public platform::Console {
   public:
    explicit RecordedConsole(Calls& calls) : calls_(calls) {}
    void log(std::string_view message) override { calls_.add("console:" + std::string(message)); }

   private:
    Calls& calls_;
  };

  Calls calls_;
  MemoryUserDefaults store_;
  RecordedDefaults recordedDefaults_{calls_, store_};
  RecordedConsole recordedConsole_{calls_};
};

// A platform that is in place for as long as this object lives.
template <class P>
class InstalledPlatform {
 public:
  template <class... Arguments>
  explicit InstalledPlatform(Arguments&&... arguments)
      : platform_(std::make_shared<P>(std::forward<Arguments>(arguments)...)) {
    platform::install(platform_);
  }
  InstalledPlatform(const InstalledPlatform&) = delete;
  InstalledPlatform& operator=(const InstalledPlatform&) = delete;
  ~InstalledPlatform() { platform::install(nullptr); }

  [[nodiscard]] P* operator->() const { return platform_.get(); }
  [[nodiscard]] P& operator*() const { return *platform_; }

 private:
  std::shared_ptr<P> platform_;
};

}  // namespace tavlo::test
