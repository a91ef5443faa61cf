#include "cache/SortByStartDate.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "common/ValueComparison.h"

namespace tavlo {
namespace {

struct Keyed {
  const Value* startDate = nullptr;  // nullptr when it is missing
  const Value* record = nullptr;
};

const Value* startDateOf(const Value& record) {
  const ValueObject* const object = record.ifObject();
  const ValueMap* const fields = object ? &object->fields : record.ifMap();
  const Value* const date = fields ? fields->find("startdate") : nullptr;
  const bool nothing = date && date->ifUid() && date->ifUid()->index == 0;
  return nothing ? nullptr : date;
}

// The first eight bytes, which decide most comparisons, and the whole text for the others.
struct TextKey {
  explicit TextKey(std::string_view itself) : text(itself) {
    for (std::size_t i = 0; i < sizeof beginning; ++i) {
      beginning = (beginning << 8U) | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    }
  }
  bool operator<(const TextKey& other) const {
    return beginning != other.beginning ? beginning < other.beginning : text < other.text;
  }

  std::uint64_t beginning = 0;
  std::string_view text;
};

// Orders as the seconds do of numbers, a zero below zero before the other.
std::uint64_t dateKey(double seconds) {
  const auto bits = std::bit_cast<std::uint64_t>(seconds);
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

template <class Key, class KeyOf>
ValueList sortedByKeys(const std::vector<Keyed>& keyed, KeyOf keyOf) {
  std::vector<std::pair<Key, const Value*>> order;
  order.reserve(keyed.size());
  for (const Keyed& each : keyed) order.emplace_back(keyOf(*each.startDate), each.record);
  std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  ValueList sorted;
  sorted.reserve(order.size());
  for (const auto& [key, record] : order) sorted.push_back(*record);
  return sorted;
}

ValueList sortedByComparison(std::vector<Keyed> order) {
  ValueComparison comparison;
  std::stable_sort(order.begin(), order.end(), [&](const Keyed& a, const Keyed& b) {
    if (!a.startDate || !b.startDate) return !a.startDate && b.startDate;
    return comparison.compare(*a.startDate, *b.startDate) < 0;
  });
  ValueList sorted;
  sorted.reserve(order.size());
  for (const Keyed& keyed : order) sorted.push_back(*keyed.record);
  return sorted;
}

// Long texts could be made to cost: each is compared more than once.
bool isShortText(const Keyed& keyed) {
  constexpr std::size_t kShort = 64;
  const std::string* const text = keyed.startDate ? keyed.startDate->ifText() : nullptr;
  return text && text->size() <= kShort;
}

// One that is a number: the others have an order of their own.
bool isDate(const Keyed& keyed) {
  const Date* const date = keyed.startDate ? keyed.startDate->ifDate() : nullptr;
  return date && !std::isnan(date->seconds);
}

}  // namespace

ValueList sortedByStartDate(const ValueList& records) {
  std::vector<Keyed> keyed;
  keyed.reserve(records.size());
  for (const Value& record : records) keyed.push_back({.startDate = startDateOf(record), .record = &record});
  if (std::all_of(keyed.begin(), keyed.end(), isDate)) {
    return sortedByKeys<std::uint64_t>(keyed, [](const Value& date) { return dateKey(date.ifDate()->seconds); });
  }
  if (std::all_of(keyed.begin(), keyed.end(), isShortText)) {
    return sortedByKeys<TextKey>(keyed, [](const Value& text) { return TextKey(*text.ifText()); });
  }
  return sortedByComparison(std::move(keyed));
}

}  // namespace tavlo
