// Doubles of any bits.
#pragma once

#include <bit>
#include <cstdint>

namespace tavlo::test {

// 32-bit x86 gives doubles back in registers that turn each one that is no number, and signals so, into a quiet one:
// there, the quiet one of these bits.
[[nodiscard]] inline double anyDouble(std::uint64_t bits) {
#if defined(__i386__)
  constexpr std::uint64_t kNoNumber = 0x7FF0'0000'0000'0000;
  constexpr std::uint64_t kQuiet = 0x0008'0000'0000'0000;
  constexpr std::uint64_t kFraction = 2 * kQuiet - 1;
  if ((bits & kNoNumber) == kNoNumber && (bits & kFraction) != 0) bits |= kQuiet;
#endif
  return std::bit_cast<double>(bits);
}

}  // namespace tavlo::test
