// The operations as OutOfMemoryTest.cpp tries them, one row each or two.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "common/Value.h"
#include "tests/integration/OutOfMemoryWorld.h"
#include "tests/support/FailingAllocations.h"

namespace tavlo::test {

// Runs the part of a call that has to do with little memory.
class Attempt {
 public:
  Attempt(int allocations, OutOfMemory::Lasts lasts) : allocations_(allocations), lasts_(lasts) {}

  template <class Operation>
  auto operator()(Operation operation) {
    OutOfMemory memory(allocations_, lasts_);
    try {
      auto result = operation();
      ranOut_ = memory.end();
      return result;
    } catch (...) {
      ranOut_ = memory.end();
      throw;
    }
  }
  [[nodiscard]] bool ranOut() const { return ranOut_; }

 private:
  const int allocations_;
  const OutOfMemory::Lasts lasts_;
  bool ranOut_ = false;
};

struct OutOfMemoryOperation {
  const char* name;
  std::function<void(OutOfMemoryWorld&)> prepare;
  std::function<Value(OutOfMemoryWorld&, Attempt&)> call;
  Value answer;  // null: none, or what the call answers while there is memory
  // What the operation was about; of the states the first one is that before it, the last one that after it.
  std::function<std::string(OutOfMemoryWorld&)> state = [](OutOfMemoryWorld&) { return std::string(); };
  std::vector<std::string> states = {""};
};

inline void PrintTo(const OutOfMemoryOperation& operation, std::ostream* out) { *out << operation.name; }

// All of the public face.
[[nodiscard]] std::vector<OutOfMemoryOperation> outOfMemoryOperations();

}  // namespace tavlo::test
