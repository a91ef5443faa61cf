// What is asked of malloc() in this program, by any library: the program has its own malloc(), which counts and passes
// on.
#pragma once

#include <cstdint>

namespace tavlo::bench {

// By this thread so far.
[[nodiscard]] std::int64_t allocations();

// The most bytes that all threads held at once since this object was made, beyond those that they held then. One at a
// time.
class PeakOfAllocations {
 public:
  PeakOfAllocations();
  PeakOfAllocations(const PeakOfAllocations&) = delete;
  PeakOfAllocations& operator=(const PeakOfAllocations&) = delete;
  ~PeakOfAllocations();

  [[nodiscard]] std::int64_t bytes() const;
};

}  // namespace tavlo::bench
