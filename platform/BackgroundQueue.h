// The platform's global queue of background priority (the value -32768).
//
// Threads  any thread, any time. Tasks run concurrently with their callers and with one another.
#pragma once

#include <functional>

namespace tavlo::platform {

class BackgroundQueue {
 public:
  BackgroundQueue() = default;
  BackgroundQueue(const BackgroundQueue&) = delete;
  BackgroundQueue& operator=(const BackgroundQueue&) = delete;
  virtual ~BackgroundQueue() = default;

  // Runs the task later, on a worker, and returns at once. What a task throws ends that task only. While the
  // process exits, tasks that have not begun are dropped.
  virtual void dispatchAsync(std::function<void()> task) = 0;
};

}  // namespace tavlo::platform
