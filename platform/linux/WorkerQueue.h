// WorkerQueue: the background queue of this platform, a few threads of low priority.
//
// Values   tasks begin in the order in which they came. Workers are made one by one, when a task finds none at
//          rest, and have nice value 10 and the signals blocked that are sent to a process from outside.
// Absent   an empty task is nothing to do. A task is dropped, never run, when the queue has been stopped, when the
//          process exits, and when the system has no thread for the first worker; lacking threads for the
//          others, tasks wait for those there are.
// Threads  any thread, any time, also a worker of any queue. A task runs, and what it holds is destroyed, with
//          no lock held. A child of fork() has no workers, and neither waits for them nor stops them.
// Throws   std::bad_alloc from dispatchAsync(). What a task throws ends that task only.
//
// Leaving main(), or calling std::exit(), stops every queue of the process: one exit handler, registered when the
// first worker of all is made, does so, before the handlers of libraries that were set up earlier.
#pragma once

#include <functional>
#include <memory>

#include "platform/BackgroundQueue.h"

namespace tavlo::linux_platform {

class WorkerQueue final : public platform::BackgroundQueue {
 public:
  // `cancel` makes the tasks that are running end soon. It is called once, when the queue stops, by any thread.
  explicit WorkerQueue(int workers, std::function<void()> cancel = nullptr);
  WorkerQueue(const WorkerQueue&) = delete;
  WorkerQueue& operator=(const WorkerQueue&) = delete;
  ~WorkerQueue() override;

  void dispatchAsync(std::function<void()> task) override;

  // Drops the tasks that have not begun, cancels those that run and waits for them; called by a worker, it does not
  // wait. Stopping again waits for the first stop.
  void stop();

 private:
  class Crew;
  class Registry;

  std::shared_ptr<Crew> crew_;
};

}  // namespace tavlo::linux_platform
