#include "bench/Race.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace tavlo::bench {
namespace {

constexpr std::array<const char*, 3> kRoles{"ours", "peer", "limit"};
constexpr std::size_t kMostShown = 200;

std::string shortened(const std::string& answer) {
  return answer.size() <= kMostShown
             ? answer
             : answer.substr(0, kMostShown) + "... (" + std::to_string(answer.size()) + " bytes)";
}

}  // namespace

void Race::print(std::size_t number) const {
  std::printf("race\t%zu\t%s\t%s\t%s\n", number, operation_.c_str(), input_.c_str(),
              size_ ? std::to_string(*size_).c_str() : "");
  for (const Contestant& each : contestants_) {
    std::printf("contestant\t%s\t%s\n", each.name.c_str(), kRoles.at(static_cast<std::size_t>(each.role)));
  }
  for (const Bar& each : bars_) std::printf("bar\t%g\t%s\n", each.ratio, each.of.c_str());
}

std::vector<std::int64_t> Race::check() const {
  if (setUp_) setUp_();
  std::optional<std::string> expected;
  std::vector<std::int64_t> peaks;
  for (const Contestant& each : contestants_) {
    if (prepare_) prepare_();
    const std::optional<std::string> answer = each.answer(peaks.emplace_back(0));
    if (each.role == Role::ours) {
      expected = answer;
    } else if (each.role == Role::peer && answer && answer != expected) {
      throw std::runtime_error(operation_ + ", " + input_ + ": " + each.name + " answers\n  " + shortened(*answer) +
                               "\nand we answer\n  " + shortened(expected.value_or("nothing")));
    }
  }
  return peaks;
}

void Race::enterBenchmarks(const std::vector<std::int64_t>& peaks) const {
  for (std::size_t i = 0; i < contestants_.size(); ++i) {
    const Contestant& each = contestants_[i];
    auto* const benchmark =
        benchmark::RegisterBenchmark((operation_ + '/' + input_ + '/' + each.name).c_str(),
                                     [run = each.run, prepare = prepare_, peak = peaks.at(i)](benchmark::State& state) {
                                       run(state, prepare);
                                       state.counters["peak_bytes"] = static_cast<double>(peak);
                                     });
    if (prepare_) {
      benchmark->UseManualTime()->Iterations(1);
    } else if (wallClock_) {
      benchmark->UseRealTime();
    }
  }
}

}  // namespace tavlo::bench
