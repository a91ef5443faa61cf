#include "tests/support/FailingAllocations.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kPlenty = -1;

thread_local int allocationsLeft = kPlenty;
thread_local bool failsOnce = false;
thread_local bool hasFailed = false;

}  // namespace

// None is inlined, or the compiler takes malloc and delete, or new and free, for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (allocationsLeft == 0) {
    hasFailed = true;
    if (failsOnce) allocationsLeft = kPlenty;
    throw std::bad_alloc();
  }
  if (allocationsLeft != kPlenty) --allocationsLeft;
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace tavlo::test {

OutOfMemory::OutOfMemory(int allocations, Lasts lasts) {
  hasFailed = false;
  failsOnce = lasts == Lasts::once;
  allocationsLeft = allocations;
}

bool OutOfMemory::end() {
  allocationsLeft = kPlenty;
  return hasFailed;
}

}  // namespace tavlo::test
