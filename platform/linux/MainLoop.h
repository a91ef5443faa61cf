// MainLoop: the one thread of the process that the desktop's libraries run on.
//
//   MainLoop::post([] { /* asynchronous calls of GLib; they answer on this thread */ });
//
// Values   the thread is made by the first post(). It has a GMainContext of its own as its thread-default one, so
//          that whatever a task starts there is answered there, and the signals blocked that are sent to a process
//          from outside. The host's own main loop, if it has one, is not touched.
// Absent   an empty task is nothing to do. post() is false, and the task is destroyed, when the system has no thread,
//          once the process exits, and in a child of fork(), where GLib must not be used at all.
// Threads  any thread, any time. Tasks run one after another, in the order in which they were posted, with no lock
//          held, and must not wait: everything asynchronous of this process waits with them.
// Throws   std::bad_alloc from post(). What a task throws ends that task only; it never reaches GLib.
//
// The thread is never ended and nothing of it is destroyed. Leaving main(), or calling std::exit(), parks it: the task
// that is running ends (the exit waits for it for one second at most), and none begins after it, so that nothing runs
// in a library that is being torn down.
#pragma once

#include <functional>

namespace tavlo::linux_platform {

class MainLoop {
 public:
  static bool post(std::function<void()> task);

  // Whether the caller is that thread, which may wait for nothing that it has to answer itself.
  [[nodiscard]] static bool isCurrent() noexcept;

 private:
  class Loop;
};

}  // namespace tavlo::linux_platform
