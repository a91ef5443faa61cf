// Who enters races. Each takes what it races from the real Linux platform, in a temporary container.
#pragma once

#include <array>

#include "bench/Race.h"

namespace tavlo::bench {

void addClearing(Races& races);
void addDigests(Races& races);
void addDownloads(Races& races);
void addIdentifiers(Races& races);
void addImages(Races& races);
void addLists(Races& races);
void addLookUps(Races& races);
void addRequests(Races& races);
void addSorts(Races& races);
void addTracker(Races& races);
void addUrlEncode(Races& races);

inline constexpr std::array kAreas{addClearing, addDigests,  addDownloads, addIdentifiers, addImages,   addLists,
                                   addLookUps,  addRequests, addSorts,     addTracker,     addUrlEncode};

}  // namespace tavlo::bench
