// RequestPace: lets at most one request a second begin.
//
// Values   the time is that of a clock which tests step by hand. Two requests begin a second apart, or more.
// Threads  next() belongs to one thread at a time; cancel() may be called by any.
#pragma once

#include <chrono>
#include <memory>
#include <optional>

namespace tavlo::linux_platform {

class RequestPace {
 public:
  using Time = std::chrono::steady_clock::time_point;

  class Clock {
   public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    [[nodiscard]] virtual Time now() = 0;

    // False, at once, when it has been cancelled or is meanwhile.
    [[nodiscard]] virtual bool waitUntil(Time time) = 0;
    virtual void cancel() = 0;
  };

  explicit RequestPace(std::unique_ptr<Clock> clock) : clock_(std::move(clock)) {}

  // Waits for the turn of the next request. False: cancelled, and no request may begin any more.
  [[nodiscard]] bool next();
  void cancel() { clock_->cancel(); }

 private:
  const std::unique_ptr<Clock> clock_;
  std::optional<Time> last_;
};

// The time of this machine.
[[nodiscard]] std::unique_ptr<RequestPace::Clock> makeSteadyClock();

}  // namespace tavlo::linux_platform
