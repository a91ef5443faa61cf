// The host app that the benchmarks measure against: a filled session record, fixed counters, tracker records
// in memory, and the real Linux platform in a temporary container, its console quiet.
#pragma once

#include <cstddef>

namespace tavlo::bench {

// Installs everything, with that many tracker records. Call it before the measured loop.
void installHost(std::size_t trackerRecords = 0);

// Takes the session record, the counters and the tracker records out again; the platform stays.
void removeHost();

}  // namespace tavlo::bench
