// SignalsBlocked: while it lives, the threads that are made do not receive the signals that are sent to a process
// from outside. Those that tell of a fault of the thread itself stay open.
//
// Threads  holds for the thread that made it, which must also end it; a new thread inherits the mask.
#pragma once

#include <pthread.h>

#include <csignal>

namespace tavlo::linux_platform {

class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t blocked{};
    sigfillset(&blocked);
    for (const int fault : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGPROF, SIGSEGV, SIGSYS, SIGTRAP}) {
      sigdelset(&blocked, fault);
    }
    pthread_sigmask(SIG_SETMASK, &blocked, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace tavlo::linux_platform
