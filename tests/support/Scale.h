// How often a test of races and random inputs repeats itself: a tenth under ThreadSanitizer, which is slow and
// sees a race without repetition; more when the environment variable TAVLO_TEST_SCALE says so many times.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>

namespace tavlo::test {

#if defined(__SANITIZE_THREAD__)
inline constexpr bool kUnderThreadSanitizer = true;
#elif defined(__has_feature)
inline constexpr bool kUnderThreadSanitizer = __has_feature(thread_sanitizer);
#else
inline constexpr bool kUnderThreadSanitizer = false;
#endif

[[nodiscard]] inline int scaled(int repetitions) {
  const char* const scale = std::getenv("TAVLO_TEST_SCALE");
  const int times = scale ? std::max(1, std::atoi(scale)) : 1;
  return std::max(1, (kUnderThreadSanitizer ? repetitions / 10 : repetitions) * times);
}

}  // namespace tavlo::test
