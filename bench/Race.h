// A race: one operation of ours against what does the same work elsewhere, on the same input; a row of the table.
//
//   races.add("urlEncode", "a UUID")
//       .ours([=] { return urlEncode(text); })
//       .peer("Boost.URL", [=] { return peers::boostUrlEncode(*text); })
//       .limit("a copy of the bytes", [=] { return std::string(*text); })
//       .atMost(0.4, "Boost.URL");
//
// Work         a callable without arguments. What it captures it owns.
// Ours, peers  before anything is timed each is called once; a peer whose answer is not ours ends the program with
//              status 1. answerOf() makes an answer comparable; work that gives void is not compared.
// Limits       what no implementation can do without: a copy, a system call. Not compared.
// Bars         the largest ratio of our median to that of the contestant named, or of the best peer.
// Sizes        races of one operation that have sizes are fitted for growth: time ~ size ^ exponent.
// setUp        runs once, before the first contestant.
// prepare      runs untimed before every single call, for work that uses up what it works on.
// Time         is the calling thread's; the clock on the wall's after wallClock(), for work that waits or has threads,
//              and after prepare().
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bench/Allocations.h"
#include "common/Text.h"

namespace tavlo::bench {

enum class Role : std::uint8_t { ours, peer, limit };

struct Contestant {
  std::string name;
  Role role = Role::ours;
  std::function<std::optional<std::string>(std::int64_t& peak)> answer;      // calls the work once
  std::function<void(benchmark::State&, const std::function<void()>&)> run;  // with what prepares a call, if anything
};

struct Bar {
  double ratio = 0;
  std::string of;  // a contestant's name; empty: the best peer
};

inline std::string answerOf(std::string answer) { return answer; }
inline std::string answerOf(const Text& answer) { return answer ? '"' + *answer + '"' : "absent"; }
inline std::string answerOf(std::integral auto answer) { return std::to_string(answer); }

class Race {
 public:
  Race(std::string operation, std::string input) : operation_(std::move(operation)), input_(std::move(input)) {}

  template <std::invocable Work>
  Race& ours(Work work) {
    return add("ours", Role::ours, std::move(work));
  }
  template <std::invocable Work>
  Race& peer(std::string name, Work work) {
    return add(std::move(name), Role::peer, std::move(work));
  }
  template <std::invocable Work>
  Race& limit(std::string name, Work work) {
    return add(std::move(name), Role::limit, std::move(work));
  }
  Race& atMost(double ratio, std::string of = {}) {
    bars_.push_back({.ratio = ratio, .of = std::move(of)});
    return *this;
  }
  Race& size(std::size_t size) {
    size_ = size;
    return *this;
  }
  Race& setUp(std::function<void()> setUp) {
    setUp_ = std::move(setUp);
    return *this;
  }
  Race& wallClock() {
    wallClock_ = true;
    return *this;
  }
  Race& prepare(std::function<void()> prepare) {
    prepare_ = std::move(prepare);
    return *this;
  }

  // One line of tab-separated fields for the race, each contestant and each bar.
  void print(std::size_t number) const;
  // Throws std::runtime_error when a peer's answer differs from ours. Gives the most bytes that each contestant held
  // at once.
  std::vector<std::int64_t> check() const;
  void enterBenchmarks(const std::vector<std::int64_t>& peaks) const;

 private:
  template <typename Work>
  Race& add(std::string name, Role role, Work work);

  std::string operation_;
  std::string input_;
  std::vector<Contestant> contestants_;
  std::vector<Bar> bars_;
  std::optional<std::size_t> size_;
  bool wallClock_ = false;
  std::function<void()> setUp_;
  std::function<void()> prepare_;
};

class Races {
 public:
  // In brief, no size is greater than kBrief: enough to show that everything still runs.
  explicit Races(bool brief) : brief_(brief) {}

  Race& add(std::string operation, std::string input) {
    return races_.emplace_back(std::move(operation), std::move(input));
  }
  [[nodiscard]] std::size_t sized(std::size_t size) const { return brief_ && size > kBrief ? kBrief : size; }
  [[nodiscard]] const std::deque<Race>& all() const { return races_; }

 private:
  static constexpr std::size_t kBrief = 20;

  bool brief_;
  std::deque<Race> races_;
};

template <typename Work>
Race& Race::add(std::string name, Role role, Work work) {
  Contestant contestant{.name = std::move(name), .role = role, .answer = {}, .run = {}};
  contestant.answer = [work](std::int64_t& peak) mutable -> std::optional<std::string> {
    std::optional<PeakOfAllocations> held(std::in_place);
    if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
      work();
      peak = held->bytes();
      return std::nullopt;
    } else {
      const auto result = work();
      peak = held->bytes();
      held.reset();
      return answerOf(result);
    }
  };
  contestant.run = [work](benchmark::State& state, const std::function<void()>& prepare) mutable {
    const auto call = [&work] {
      if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
        work();
      } else {
        benchmark::DoNotOptimize(work());
      }
    };
    std::int64_t count = 0;
    if (prepare) {
      for (auto iteration : state) {
        prepare();
        const std::int64_t before = allocations();
        const auto start = std::chrono::steady_clock::now();
        call();
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        count += allocations() - before;
      }
    } else {
      const std::int64_t before = allocations();
      for (auto iteration : state) call();
      count = allocations() - before;
    }
    state.counters["allocations"] = benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
  };
  contestants_.push_back(std::move(contestant));
  return *this;
}

}  // namespace tavlo::bench
