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

// A record and what it is sorted by. Where the ranks of two differ they decide.
struct Keyed {
  std::uint64_t rank = 0;
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

// The first eight bytes, which decide most comparisons.
std::uint64_t textRank(std::string_view text) {
  std::uint64_t rank = 0;
  for (std::size_t i = 0; i < sizeof rank; ++i) {
    rank = (rank << 8U) | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
  }
  return rank;
}

// Orders as the seconds do of numbers, a zero below zero before the other.
std::uint64_t dateRank(double seconds) {
  const auto bits = std::bit_cast<std::uint64_t>(seconds);
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
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
  std::vector<Keyed> order;
  order.reserve(records.size());
  for (const Value& record : records) order.push_back({.rank = 0, .startDate = startDateOf(record), .record = &record});
  const bool areDates = std::all_of(order.begin(), order.end(), isDate);
  const bool areTexts = !areDates && std::all_of(order.begin(), order.end(), isShortText);
  for (Keyed& each : order) {
    if (areDates) each.rank = dateRank(each.startDate->ifDate()->seconds);
    if (areTexts) each.rank = textRank(*each.startDate->ifText());
  }

  ValueComparison comparison;
  std::stable_sort(order.begin(), order.end(), [&](const Keyed& a, const Keyed& b) {
    if (a.rank != b.rank) return a.rank < b.rank;
    if (areDates) return false;
    if (areTexts) return *a.startDate->ifText() < *b.startDate->ifText();
    if (!a.startDate || !b.startDate) return !a.startDate && b.startDate;
    return comparison.compare(*a.startDate, *b.startDate) < 0;
  });

  ValueList sorted;
  sorted.reserve(order.size());
  for (const Keyed& each : order) sorted.push_back(*each.record);
  return sorted;
}

}  // namespace tavlo
