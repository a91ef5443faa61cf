// How often a test of races and random inputs repeats itself: seldom in the suite, as often as the plan of tests asks
// for with --full (or TAVLO_TEST_FULL=1 in the environment), and a tenth under ThreadSanitizer, which is slow and sees
// a race without repetition, and in an emulator, which is slow, too, and there for what another processor does.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace tavlo::test {

#if defined(__SANITIZE_THREAD__)
inline constexpr bool kUnderThreadSanitizer = true;
#elif defined(__has_feature)
inline constexpr bool kUnderThreadSanitizer = __has_feature(thread_sanitizer);
#else
inline constexpr bool kUnderThreadSanitizer = false;
#endif

#ifdef TAVLO_TEST_EMULATED
inline constexpr bool kEmulated = true;
#else
inline constexpr bool kEmulated = false;
#endif

[[nodiscard]] inline int scaled(int repetitions) {
  return std::max(1, kUnderThreadSanitizer || kEmulated ? repetitions / 10 : repetitions);
}

[[nodiscard]] inline bool atFullFigures() { return std::getenv("TAVLO_TEST_FULL") != nullptr; }

[[nodiscard]] inline int figure(int brief, int full) { return atFullFigures() ? full : scaled(brief); }

// Says which figure of the plan a test reached; scripts/trust.sh reads it.
inline void reached(std::string_view item, std::string_view what) {
  std::cout << "[ FIGURE ] " << item << ": " << what << std::endl;
}

}  // namespace tavlo::test
