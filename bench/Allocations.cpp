#include "bench/Allocations.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace tavlo::bench {
namespace {

thread_local std::int64_t count = 0;
std::atomic<bool> isWatched = false;
std::atomic<std::int64_t> held = 0;
std::atomic<std::int64_t> peak = 0;

void* counted(void* block) {
  ++count;
  if (isWatched.load(std::memory_order_relaxed) && block != nullptr) {
    const auto size = static_cast<std::int64_t>(::malloc_usable_size(block));
    const std::int64_t now = held.fetch_add(size) + size;
    std::int64_t before = peak;
    while (before < now && !peak.compare_exchange_weak(before, now)) {
    }
  }
  return block;
}

void released(void* block) {
  if (isWatched.load(std::memory_order_relaxed) && block != nullptr) {
    held -= static_cast<std::int64_t>(::malloc_usable_size(block));
  }
}

}  // namespace

std::int64_t allocations() { return count; }

PeakOfAllocations::PeakOfAllocations() {
  held = 0;
  peak = 0;
  isWatched = true;
}

PeakOfAllocations::~PeakOfAllocations() { isWatched = false; }

std::int64_t PeakOfAllocations::bytes() const { return peak; }

}  // namespace tavlo::bench

extern "C" {

void* malloc(std::size_t size) { return tavlo::bench::counted(__libc_malloc(size)); }
void* calloc(std::size_t number, std::size_t size) { return tavlo::bench::counted(__libc_calloc(number, size)); }
void* realloc(void* block, std::size_t size) {
  tavlo::bench::released(block);
  return tavlo::bench::counted(__libc_realloc(block, size));
}
void* memalign(std::size_t alignment, std::size_t size) {
  return tavlo::bench::counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }
int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  void* const made = memalign(alignment, size);
  if (made == nullptr) return ENOMEM;
  *block = made;
  return 0;
}
void free(void* block) {
  tavlo::bench::released(block);
  __libc_free(block);
}

}  // extern "C"
