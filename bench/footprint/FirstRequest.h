// The first ad request of a process.
#pragma once

#include <chrono>
#include <cstdio>
#include <string>

#include "TavloUtility.h"

namespace tavlo::bench {

// Prints how many nanoseconds it took, and gives the program's exit status.
inline int firstRequest() {
  const auto start = std::chrono::steady_clock::now();
  const std::string request = TavloUtility::getAdditionalRequestingString();
  const auto took = std::chrono::steady_clock::now() - start;
  std::printf("%lld\n", static_cast<long long>(std::chrono::nanoseconds(took).count()));
  return request.empty() ? 1 : 0;
}

}  // namespace tavlo::bench
