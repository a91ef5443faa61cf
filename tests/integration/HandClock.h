// A clock of the geocoder's pace that tests step by hand.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/linux/RequestPace.h"

namespace tavlo::test {

class HandClock final : public linux_platform::RequestPace::Clock {
 public:
  using Time = linux_platform::RequestPace::Time;
  using Step = std::chrono::milliseconds;

  Time now() override {
    const std::lock_guard lock(mutex_);
    return now_;
  }
  bool waitUntil(Time time) override {
    std::unique_lock lock(mutex_);
    awaited_ = time;
    isAwaited_ = time > now_;
    changes_.notify_all();
    changes_.wait(lock, [&] { return cancelled_ || now_ >= time; });
    return !cancelled_;
  }
  void cancel() override {
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    changes_.notify_all();
  }

  void step(Step by) {
    const std::lock_guard lock(mutex_);
    now_ += by;
    if (now_ >= awaited_) isAwaited_ = false;
    changes_.notify_all();
  }
  // Long enough for whatever came before; times count from here.
  void restart() {
    step(std::chrono::hours(1));
    const std::lock_guard lock(mutex_);
    origin_ = now_;
  }
  // Returns when someone waits for a time that has not come.
  Step awaited() {
    std::unique_lock lock(mutex_);
    changes_.wait(lock, [&] { return isAwaited_; });
    return std::chrono::duration_cast<Step>(awaited_ - origin_);
  }

 private:
  std::mutex mutex_;
  std::condition_variable changes_;
  Time now_{};
  Time origin_{};
  Time awaited_{};
  bool isAwaited_ = false;
  bool cancelled_ = false;
};

}  // namespace tavlo::test
