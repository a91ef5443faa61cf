// What ends a run of the program early: each carries the one line that the user reads.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace tavlo::cli {

// Something that was asked for could not be done. Exit code 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command line asks for nothing that there is. Exit code 2. `command` is the one whose help shows what
// there is.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& message, std::string command = "tavlo")
      : std::runtime_error(message), command_(std::move(command)) {}

  [[nodiscard]] const std::string& command() const { return command_; }

 private:
  std::string command_;
};

}  // namespace tavlo::cli
