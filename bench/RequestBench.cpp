// The four requests.
#include <benchmark/benchmark.h>

#include "TavloUtility.h"
#include "bench/BenchHost.h"

namespace tavlo::bench {
namespace {

void adRequest(benchmark::State& state) {
  installHost();
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getAdditionalRequestingString());
}
BENCHMARK(adRequest);

void adRequestWithNothingInstalled(benchmark::State& state) {
  installHost();
  removeHost();
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getAdditionalRequestingString());
}
BENCHMARK(adRequestWithNothingInstalled);

void inAppRequest(benchmark::State& state) {
  installHost();
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getInAppNotificationAdditionalRequest());
}
BENCHMARK(inAppRequest);

void userFragment(benchmark::State& state) {
  installHost();
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getUserInfoRequestString());
}
BENCHMARK(userFragment);

void trackerPayload(benchmark::State& state) {
  installHost(static_cast<std::size_t>(state.range(0)));
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::trackerNetworkSessionData());
}
BENCHMARK(trackerPayload)->ArgName("records")->Arg(0)->Arg(100)->Arg(10'000);

// One record read by several threads at once.
void adRequestOfThreads(benchmark::State& state) {
  if (state.thread_index() == 0) installHost();
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getAdditionalRequestingString());
}
BENCHMARK(adRequestOfThreads)->Threads(2)->Threads(8)->UseRealTime();

}  // namespace
}  // namespace tavlo::bench
