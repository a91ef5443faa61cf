// Clock: where the host takes the time from. Tests and replays bring their own.
//
// Threads  a clock is called by any thread, without a lock held.
#pragma once

#include <chrono>
#include <functional>

namespace tavlo::host {

using Clock = std::function<std::chrono::system_clock::time_point()>;

[[nodiscard]] inline Clock systemClock() { return &std::chrono::system_clock::now; }

}  // namespace tavlo::host
