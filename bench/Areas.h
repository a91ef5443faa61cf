// Who enters races. Each takes what it races from the real Linux platform, in a temporary container.
#pragma once

#include <array>

#include "bench/Race.h"

namespace tavlo::bench {

void addUrlEncode(Races& races);

inline constexpr std::array kAreas{addUrlEncode};

}  // namespace tavlo::bench
