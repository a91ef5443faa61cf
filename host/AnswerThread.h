// AnswerThread: the one thread of the process on which providers of the host answer, one answer after another.
//
// Values   the thread is made by the first post(). It has the signals open that are open in the thread that made it.
// Absent   post() is false, and the answer is destroyed, when the system has no thread and once the process exits.
// Threads  any thread, any time, also from an answer. Answers run in the order in which they were posted, with no
//          lock held. A child of fork() has no such thread: nothing runs there.
// Throws   std::bad_alloc from post(). What an answer throws ends that answer only.
//
// Leaving main(), or calling std::exit(), parks the thread: the answer that is running ends (the exit waits for it for
// one second at most), and none begins after it. Nothing of it is destroyed.
#pragma once

#include <functional>

namespace tavlo::host {

class AnswerThread {
 public:
  static bool post(std::function<void()> answer);
};

}  // namespace tavlo::host
