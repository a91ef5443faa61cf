// Memory that runs out where a test says so, on its own thread. FailingAllocations.cpp, whose operator new is the whole
// program's, is a source of the test program that asks for this.
//
//   OutOfMemory memory(3, OutOfMemory::Lasts::once);   // three allocations succeed, the next one fails
//   try {
//     operation();
//   } catch (const std::bad_alloc&) {
//   }
//   const bool ranOut = memory.end();
#pragma once

namespace tavlo::test {

class OutOfMemory {
 public:
  // Whether there is memory again after the one allocation that fails.
  enum class Lasts { once, toTheEnd };

  OutOfMemory(int allocations, Lasts lasts);
  OutOfMemory(const OutOfMemory&) = delete;
  OutOfMemory& operator=(const OutOfMemory&) = delete;
  ~OutOfMemory() { end(); }

  // Whether any allocation has failed; none fails any more.
  bool end();
};

}  // namespace tavlo::test
