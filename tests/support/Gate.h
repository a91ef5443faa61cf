// Opened once, for any number of threads that wait for it. Who has waited may destroy it while open() still returns.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

namespace tavlo::test {

class Gate {
 public:
  void open() {
    const auto state = state_;
    const std::lock_guard lock(state->mutex);
    state->open = true;
    state->opens.notify_all();
  }
  void wait() {
    const auto state = state_;
    std::unique_lock lock(state->mutex);
    state->opens.wait(lock, [&] { return state->open; });
  }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable opens;
    bool open = false;
  };

  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace tavlo::test
