// The seed of random tests. A test that asked for it prints it, and when it fails, the one command that repeats it.
#pragma once

#include <cstdint>

namespace tavlo::test {

// What --seed=N or the environment variable TAVLO_TEST_SEED says. Without them always the same, so that a red run is
// the change's doing, but with --full another in each process.
[[nodiscard]] std::uint64_t seed();

// Called by main() once the framework is there.
void printCommandOfFailedTests(const char* program);

}  // namespace tavlo::test
