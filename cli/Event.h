// Event: something that happens on any thread, to wait for beside a time limit and an interruption.
#pragma once

#include <chrono>
#include <cstdint>

namespace tavlo::cli {

enum class WaitEnd : std::uint8_t { done, timedOut, interrupted };

// How long to wait at most. `wakeUp` is a descriptor that has something to read when nothing is to be waited for.
struct Patience {
  std::chrono::steady_clock::time_point until;
  int wakeUp = -1;  // nothing
};

// Throws Failure from its constructor when the system has none.
class Event {
 public:
  Event();
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  ~Event();

  void happen() noexcept;

  // Until it has happened since the last wait. For one thread.
  [[nodiscard]] WaitEnd wait(const Patience& patience);

 private:
  int descriptor_;  // has something to read when it happened
};

}  // namespace tavlo::cli
