#include "cli/Interrupt.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "cli/Errors.h"

namespace tavlo::cli {

Interrupt::Interrupt() {
  sigset_t signals{};
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  static_cast<void>(pthread_sigmask(SIG_BLOCK, &signals, &before_));
  descriptor_ = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  if (descriptor_ < 0) {
    const int error = errno;
    static_cast<void>(pthread_sigmask(SIG_SETMASK, &before_, nullptr));
    throw Failure("cannot wait for signals: " + std::generic_category().message(error));
  }
}

Interrupt::~Interrupt() {
  signalfd_siginfo come{};
  while (::read(descriptor_, &come, sizeof come) > 0) {
  }
  ::close(descriptor_);
  static_cast<void>(pthread_sigmask(SIG_SETMASK, &before_, nullptr));
}

}  // namespace tavlo::cli
