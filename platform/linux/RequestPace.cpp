#include "platform/linux/RequestPace.h"

#include <condition_variable>
#include <mutex>

namespace tavlo::linux_platform {
namespace {

constexpr std::chrono::seconds kInterval{1};

class SteadyClock final : public RequestPace::Clock {
 public:
  RequestPace::Time now() override { return std::chrono::steady_clock::now(); }

  bool waitUntil(RequestPace::Time time) override {
    std::unique_lock lock(mutex_);
    return !cancel_.wait_until(lock, time, [this] { return cancelled_; });
  }

  void cancel() override {
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    cancel_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable cancel_;
  bool cancelled_ = false;
};

}  // namespace

bool RequestPace::next() {
  if (!clock_->waitUntil(last_ ? *last_ + kInterval : clock_->now())) return false;
  last_ = clock_->now();
  return true;
}

std::unique_ptr<RequestPace::Clock> makeSteadyClock() { return std::make_unique<SteadyClock>(); }

}  // namespace tavlo::linux_platform
