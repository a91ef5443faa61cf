// What becomes of open-in menus, in order, for a test to wait on: "opened", "failed: <explanation>".
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/MenuOutcome.h"

namespace tavlo::test {

class AwaitedOutcomes {
 public:
  // May be called after this object is gone.
  [[nodiscard]] linux_platform::MenuHandler handler() const {
    return [list = list_](linux_platform::MenuOutcome outcome, std::string_view explanation) {
      constexpr std::array kNames{"opened", "cancelled", "failed"};
      std::string told = kNames.at(static_cast<std::size_t>(outcome));
      if (!explanation.empty()) told.append(": ").append(explanation);
      const std::lock_guard lock(list->mutex);
      list->told.push_back(std::move(told));
      list->changed.notify_all();
    };
  }

  [[nodiscard]] std::string next() {
    std::unique_lock lock(list_->mutex);
    list_->changed.wait(lock, [this] { return !list_->told.empty(); });
    std::string told = std::move(list_->told.front());
    list_->told.pop_front();
    return told;
  }

  [[nodiscard]] std::size_t left() const {
    const std::lock_guard lock(list_->mutex);
    return list_->told.size();
  }

 private:
  struct List {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::string> told;
  };

  std::shared_ptr<List> list_ = std::make_shared<List>();
};

}  // namespace tavlo::test
