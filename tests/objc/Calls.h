// What the stand-ins of the tests were asked, in order.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tavlo::test {

class Calls {
 public:
  void note(std::string call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
  }
  [[nodiscard]] std::vector<std::string> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(calls_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> calls_;
};

inline Calls& calls() {
  static auto* const calls = new Calls;
  return *calls;
}

}  // namespace tavlo::test
