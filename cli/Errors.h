// What ends a run of the program early: each carries the one line that the user reads.
#pragma once

#include <stdexcept>

namespace tavlo::cli {

// Something that was asked for could not be done. Exit code 1.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command line asks for nothing that there is. Exit code 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tavlo::cli
