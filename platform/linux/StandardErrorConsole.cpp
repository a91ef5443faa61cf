#include "platform/linux/StandardErrorConsole.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

// Keeps a SIGPIPE that this thread's own writes raise from being delivered, and takes it back at the end. One
// that was waiting before stays.
class WithoutBrokenPipe {
 public:
  WithoutBrokenPipe() {
    sigset_t waiting{};
    sigpending(&waiting);
    wasWaiting_ = sigismember(&waiting, SIGPIPE) == 1;
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  WithoutBrokenPipe(const WithoutBrokenPipe&) = delete;
  WithoutBrokenPipe& operator=(const WithoutBrokenPipe&) = delete;
  ~WithoutBrokenPipe() {
    constexpr timespec kAtOnce{};
    if (!wasWaiting_) uninterrupted([&] { return sigtimedwait(&signal_, nullptr, &kAtOnce); });
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t signal_{};
  sigset_t before_{};
  bool wasWaiting_ = false;
};

}  // namespace

void StandardErrorConsole::log(std::string_view message) {
  std::string line(message);
  line += '\n';
  const std::lock_guard lock(mutex_);
  const WithoutBrokenPipe guard;
  static_cast<void>(writeAll(syscalls_, STDERR_FILENO, line));
}

}  // namespace tavlo::linux_platform
