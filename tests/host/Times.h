// Points in time, and a clock that stands where a test puts it.
#pragma once

#include <atomic>
#include <chrono>

#include "host/Clock.h"

namespace tavlo::test {

[[nodiscard]] inline std::chrono::system_clock::time_point at(int year, unsigned month, unsigned day,
                                                              std::chrono::milliseconds timeOfDay = {}) {
  using namespace std::chrono;
  return sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) + timeOfDay;
}

// A copy of clock() follows every later change of `now`.
struct ManualClock {
  std::atomic<std::chrono::system_clock::time_point> now;
  std::atomic<int> calls = 0;

  [[nodiscard]] host::Clock clock() {
    return [this] {
      ++calls;
      return now.load();
    };
  }
};

}  // namespace tavlo::test
