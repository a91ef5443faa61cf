// The program behind bench/table.py. It runs one race a process, since the benchmark library runs once.
//
//   tavlo_bench --list [--brief]                     what there is to race, tab-separated
//   tavlo_bench --race=N [--brief] [--benchmark_...]  the race of that number: checked, then timed
//
// --brief makes the inputs small.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <exception>
#include <optional>
#include <string_view>
#include <vector>

#include "bench/Areas.h"

namespace tavlo::bench {
namespace {

constexpr std::string_view kRaceFlag = "--race=";

struct Request {
  bool list = false;
  bool brief = false;
  std::optional<std::size_t> number;
};

// Takes our flags out of `arguments`.
std::optional<Request> requestOf(std::vector<char*>& arguments) {
  Request request;
  std::erase_if(arguments, [&](std::string_view argument) {
    if (argument == "--list") return request.list = true;
    if (argument == "--brief") return request.brief = true;
    if (!argument.starts_with(kRaceFlag)) return false;
    const char* const end = argument.data() + argument.size();
    std::size_t number = 0;
    if (std::from_chars(argument.data() + kRaceFlag.size(), end, number).ptr != end) return false;
    request.number = number;
    return true;
  });
  return request.list == request.number.has_value() ? std::nullopt : std::optional(request);
}

int main(std::vector<char*> arguments) {
  const std::optional<Request> request = requestOf(arguments);
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (!request || count != 1) {
    std::fputs("usage: tavlo_bench (--list | --race=N [--benchmark_...]) [--brief]\n", stderr);
    return 2;
  }

  Races races(request->brief);
  for (const auto add : kAreas) add(races);
  if (!request->number) {
    for (std::size_t i = 0; i < races.all().size(); ++i) races.all()[i].print(i);
    return 0;
  }
  if (*request->number >= races.all().size()) {
    std::fprintf(stderr, "tavlo_bench: there are %zu races, from 0 on\n", races.all().size());
    return 2;
  }
  const Race& race = races.all()[*request->number];
  race.enterBenchmarks(race.check());
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace
}  // namespace tavlo::bench

int main(int count, char** arguments) {
  try {
    return tavlo::bench::main({arguments, arguments + count});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tavlo_bench: %s\n", error.what());
    return 1;
  }
}
