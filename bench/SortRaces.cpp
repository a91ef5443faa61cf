#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/Records.h"

namespace tavlo::bench {
namespace {

constexpr std::array<std::size_t, 3> kSizes{1'000, 10'000, 100'000};
constexpr std::string_view kDate = "startdate";

struct SortedList {
  std::optional<Value> value;
};

// The numbers in the identifiers, in order.
std::string answerOf(const SortedList& list) {
  std::string answer;
  for (const Value& record : *list.value->ifList()) answer.append(*record.ifMap()->find("id")->ifText()) += ' ';
  return answer;
}

const Value& dateOf(const Value& record) { return *record.ifMap()->find(kDate); }
double secondsOf(const Value& date) { return date.ifDate()->seconds; }
std::string_view textOf(const Value& date) { return *date.ifText(); }

template <class KeyOf>
SortedList sortedByLookUps(const Value& list, KeyOf keyOf) {
  ValueList records = *list.ifList();
  std::stable_sort(records.begin(), records.end(),
                   [&](const Value& a, const Value& b) { return keyOf(dateOf(a)) < keyOf(dateOf(b)); });
  return {Value::list(std::move(records))};
}

template <class KeyOf>
SortedList sortedByKeys(const Value& list, KeyOf keyOf) {
  using Key = decltype(keyOf(list));
  const ValueList& records = *list.ifList();
  std::vector<std::pair<Key, std::size_t>> order;
  order.reserve(records.size());
  for (std::size_t i = 0; i < records.size(); ++i) order.emplace_back(keyOf(dateOf(records[i])), i);
  std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  ValueList sorted;
  sorted.reserve(records.size());
  for (const auto& [key, index] : order) sorted.push_back(records[index]);
  return {Value::list(std::move(sorted))};
}

template <class KeyOf>
void addSort(Races& races, std::size_t size, bool byText, KeyOf keyOf) {
  const auto list = std::make_shared<std::optional<Value>>();
  races.add(byText ? "sort by texts" : "sort by dates", std::to_string(size) + " records")
      .size(size)
      .setUp([=, count = races.sized(size)] { *list = Value::list(records(count, byText)); })
      .ours([=] { return SortedList{TavloUtility::sortCacahedVideoDates(*list)}; })
      .peer("stable_sort, look-ups", [=] { return sortedByLookUps(**list, keyOf); })
      .peer("stable_sort, keys", [=] { return sortedByKeys(**list, keyOf); })
      .limit("a copy", [=] { return SortedList{Value::list(*(*list)->ifList())}; })
      .atMost(0.2, "stable_sort, look-ups")
      .atMost(1.1, "stable_sort, keys");
}

}  // namespace

void addSorts(Races& races) {
  for (const std::size_t size : kSizes) addSort(races, size, false, secondsOf);
  for (const std::size_t size : kSizes) addSort(races, size, true, textOf);
}

}  // namespace tavlo::bench
