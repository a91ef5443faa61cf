#include "host/AnswerThread.h"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace tavlo::host {
namespace {

constexpr std::chrono::seconds kLongestExit{1};

// Never destroyed, since its thread may still be parked in it when the process ends.
class Line {
 public:
  static Line& only() {
    static auto* const line = new Line;
    return *line;
  }

  bool post(std::function<void()> answer) {
    const std::lock_guard lock(mutex_);
    if (parked_ || !start()) return false;
    due_.push_back(std::move(answer));
    changed_.notify_all();
    return true;
  }

 private:
  // The lock is held.
  bool start() {
    if (thread_ != std::thread::id()) return true;
    try {
      std::thread thread([this] { run(); });
      thread_ = thread.get_id();
      thread.detach();
    } catch (const std::system_error&) {
      return false;
    }
    static_cast<void>(std::atexit([] { only().park(); }));
    return true;
  }

  void run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return !parked_ && !due_.empty(); });
      auto answer = std::move(due_.front());
      due_.pop_front();
      running_ = true;
      lock.unlock();
      try {
        answer();
      } catch (...) {  // NOLINT(bugprone-empty-catch): it ends this answer only
      }
      answer = nullptr;
      lock.lock();
      running_ = false;
      changed_.notify_all();
    }
  }

  void park() {
    std::unique_lock lock(mutex_);
    parked_ = true;
    if (std::this_thread::get_id() == thread_) return;
    changed_.wait_for(lock, kLongestExit, [this] { return !running_; });
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> due_;
  std::thread::id thread_;
  bool running_ = false;
  bool parked_ = false;
};

}  // namespace

bool AnswerThread::post(std::function<void()> answer) { return Line::only().post(std::move(answer)); }

}  // namespace tavlo::host
