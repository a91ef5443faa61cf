// Interrupt: SIGINT and SIGTERM as something to wait for, for as long as the object lives. Threads that are
// started meanwhile do not get them either.
//
// Throws   Failure when that cannot be set up.
#pragma once

#include <csignal>

namespace tavlo::cli {

class Interrupt {
 public:
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  // The signals end the process again, but for one that has come by then, which is forgotten.
  ~Interrupt();

  // Has something to read when one came.
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  sigset_t before_{};
  int descriptor_ = -1;
};

}  // namespace tavlo::cli
