// Opened once, for any number of threads that wait for it.
#pragma once

#include <condition_variable>
#include <mutex>

namespace tavlo::test {

class Gate {
 public:
  void open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    opens_.notify_all();
  }
  void wait() {
    std::unique_lock lock(mutex_);
    opens_.wait(lock, [this] { return open_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable opens_;
  bool open_ = false;
};

}  // namespace tavlo::test
