// What a fuzz target checks with. A broken promise ends the fuzzer's run, as nobody catches it there, and fails the
// test that replays the kept inputs (tests/fuzz).
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

// The entry point of each target, called with one input after another; the result is always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tavlo::fuzz {

class BrokenPromise : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void require(bool holds, const char* promise) {
  if (!holds) throw BrokenPromise(promise);
}

[[nodiscard]] inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace tavlo::fuzz
