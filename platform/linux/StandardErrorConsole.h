// StandardErrorConsole: the console log on the process's standard error.
//
// Values   message and newline go out in one write, as far as the kernel takes them in one.
// Absent   an error is ignored, and so is a reader of the pipe that is gone: no SIGPIPE ends the process.
// Threads  any thread, any time; lines never mix.
#pragma once

#include <mutex>

#include "platform/Console.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class StandardErrorConsole final : public platform::Console {
 public:
  explicit StandardErrorConsole(Syscalls& syscalls = Syscalls::real()) : syscalls_(syscalls) {}

  void log(std::string_view message) override;

 private:
  Syscalls& syscalls_;
  std::mutex mutex_;
};

}  // namespace tavlo::linux_platform
