// Who enters races. Each takes what it races from the real Linux platform, in a temporary container.
#pragma once

#include <array>

#include "bench/Race.h"

namespace tavlo::bench {

void addIdentifiers(Races& races);
void addUrlEncode(Races& races);

inline constexpr std::array kAreas{addIdentifiers, addUrlEncode};

}  // namespace tavlo::bench
