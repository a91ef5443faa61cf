#include "platform/linux/MainLoop.h"

#include <glib.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/SignalsBlocked.h"

namespace tavlo::linux_platform {
namespace {

constexpr std::chrono::seconds kParking{1};

thread_local bool isLoop = false;

}  // namespace

// GLib is only told to wake up: the tasks go through a queue and a lock of this class's own.
class MainLoop::Loop {
 public:
  // It is never destroyed: threads may ask for it while the process ends.
  static Loop& one() {
    static auto* const loop = new Loop;
    return *loop;
  }

  bool post(std::function<void()> task) {
    if (::getpid() != process_) return false;
    {
      const std::lock_guard lock(mutex_);
      if (parking_ || !start()) return false;
      tasks_.push_back(std::move(task));
    }
    g_main_context_wakeup(context_);
    return true;
  }

 private:
  Loop() = default;

  bool start() {
    if (started_) return true;
    const SignalsBlocked blocked;
    try {
      std::thread([this] { run(); }).detach();
    } catch (const std::system_error&) {
      return false;
    }
    started_ = true;
    static_cast<void>(std::atexit([] { one().park(); }));
    return true;
  }

  [[noreturn]] void run() {
    isLoop = true;
    g_main_context_push_thread_default(context_);
    for (;;) {
      runTasks();
      g_main_context_iteration(context_, TRUE);
    }
  }

  void runTasks() {
    std::unique_lock lock(mutex_);
    while (!tasks_.empty() || parking_) {
      if (parking_) stay(lock);
      std::function<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      try {
        task();
      } catch (...) {  // it ends the task; there is no one to tell
      }
      task = nullptr;  // what it holds goes while there is no lock
      lock.lock();
    }
  }

  [[noreturn]] void stay(std::unique_lock<std::mutex>& lock) {
    parked_ = true;
    changed_.notify_all();
    for (;;) changed_.wait(lock);
  }

  void park() {
    if (::getpid() != process_) return;
    std::deque<std::function<void()>> dropped;  // destroyed after the lock is gone
    std::unique_lock lock(mutex_);
    parking_ = true;
    dropped.swap(tasks_);
    g_main_context_wakeup(context_);
    if (!isLoop) changed_.wait_for(lock, kParking, [this] { return parked_; });
  }

  const pid_t process_ = ::getpid();
  GMainContext* const context_ = g_main_context_new();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  bool started_ = false;
  bool parking_ = false;
  bool parked_ = false;
};

bool MainLoop::post(std::function<void()> task) { return task && Loop::one().post(std::move(task)); }

bool MainLoop::isCurrent() noexcept { return isLoop; }

}  // namespace tavlo::linux_platform
