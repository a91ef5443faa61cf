// The identifier store on the real settings file. A setter's time is mostly the disk's: it returns when the
// value is there.
#include <benchmark/benchmark.h>

#include <string>

#include "TavloUtility.h"
#include "bench/BenchHost.h"

namespace tavlo::bench {
namespace {

void identifierGet(benchmark::State& state) {
  installHost();
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getAppIdFromUserDefault());
}
BENCHMARK(identifierGet);

void identifierSet(benchmark::State& state) {
  installHost();
  int number = 0;
  for (auto iteration : state) TavloUtility::setAppIdToUserDefault(std::to_string(++number));
}
BENCHMARK(identifierSet)->UseRealTime();

}  // namespace
}  // namespace tavlo::bench
