// A log sink that a test can wait on, and the lines of a banner download in it.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Logger.h"

namespace tavlo::test {

class AwaitedLogger final : public Logger {
 public:
  void writeLine(std::string_view message) override {
    const std::lock_guard lock(mutex_);
    lines_.emplace_back(message);
    written_.notify_all();
  }

  // All lines since the last time.
  [[nodiscard]] std::vector<std::string> take() { return takeAfter(0); }

  // The same, once this many downloads have ended.
  [[nodiscard]] std::vector<std::string> takeAfter(std::ptrdiff_t downloads) {
    std::unique_lock lock(mutex_);
    written_.wait(lock, [&] { return std::count_if(lines_.begin(), lines_.end(), isLast) >= downloads; });
    return std::exchange(lines_, {});
  }

  [[nodiscard]] bool isEmpty() {
    const std::lock_guard lock(mutex_);
    return lines_.empty();
  }

 private:
  static bool isLast(const std::string& line) { return line.starts_with("getAndSaveBannerImage()"); }

  std::mutex mutex_;
  std::condition_variable written_;
  std::vector<std::string> lines_;
};

}  // namespace tavlo::test
