#include "cache/SortByStartDate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include "common/ValueComparison.h"

namespace tavlo {
namespace {

// What is sorted in place of a record. Where the ranks of two differ they decide.
struct Ranked {
  std::uint64_t rank = 0;
  std::size_t place = 0;  // the record's
};

const Value* startDateOf(const Value& record) {
  const ValueObject* const object = record.ifObject();
  const ValueMap* const fields = object ? &object->fields : record.ifMap();
  const Value* const date = fields ? fields->find("startdate") : nullptr;
  const bool nothing = date && date->ifUid() && date->ifUid()->index == 0;
  return nothing ? nullptr : date;
}

// Eight bytes, which decide most comparisons.
std::uint64_t textRank(std::string_view text) {
  std::uint64_t rank = 0;
  for (std::size_t i = 0; i < sizeof rank; ++i) {
    rank = (rank << 8U) | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
  }
  return rank;
}

// How many bytes all the texts begin with alike.
std::size_t commonLength(const std::vector<const Value*>& texts) {
  std::string_view common = texts.empty() ? std::string_view() : *texts.front()->ifText();
  for (const Value* const each : texts) {
    const std::string_view text = *each->ifText();
    common = {common.begin(), std::mismatch(common.begin(), common.end(), text.begin(), text.end()).first};
  }
  return common.size();
}

// Orders as the seconds do of numbers, a zero below zero before the other.
std::uint64_t dateRank(double seconds) {
  const auto bits = std::bit_cast<std::uint64_t>(seconds);
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

// Long texts could be made to cost: each is compared more than once.
bool isShortText(const Value* startDate) {
  constexpr std::size_t kShort = 64;
  const auto text = startDate ? startDate->ifText() : std::nullopt;
  return text && text->size() <= kShort;
}

// One that is a number: the others have an order of their own.
bool isDate(const Value* startDate) {
  const Date* const date = startDate ? startDate->ifDate() : nullptr;
  return date && !std::isnan(date->seconds);
}

// By rank; equal ones keep their order. Eight bits of all ranks after the others, from the lowest bit in which they
// differ to the highest.
void sortByRank(std::vector<Ranked>& order) {
  constexpr int kDigit = 8;
  std::uint64_t differing = 0;
  for (const Ranked& each : order) differing |= each.rank ^ order.front().rank;
  const int end = std::numeric_limits<std::uint64_t>::digits - std::countl_zero(differing);
  std::vector<Ranked> sorted(order.size());
  for (int shift = std::countr_zero(differing); shift < end; shift += kDigit) {
    const auto digitOf = [=](const Ranked& each) {
      return static_cast<std::size_t>(each.rank >> shift & ((1U << kDigit) - 1));
    };
    std::array<std::size_t, 1U << kDigit> places{};  // how many have the digit, and then where the next of them goes
    for (const Ranked& each : order) ++places[digitOf(each)];
    std::exclusive_scan(places.begin(), places.end(), places.begin(), std::size_t{0});
    for (const Ranked& each : order) sorted[places[digitOf(each)]++] = each;
    order.swap(sorted);
  }
}

}  // namespace

ValueList sortedByStartDate(const ValueList& records) {
  std::vector<const Value*> dates;  // nullptr where one is missing
  std::vector<Ranked> order;
  dates.reserve(records.size());
  order.reserve(records.size());
  bool areDates = true;
  for (const Value& record : records) {
    const Value* const date = startDateOf(record);
    areDates = areDates && isDate(date);
    order.push_back({.rank = areDates ? dateRank(date->ifDate()->seconds) : 0, .place = dates.size()});
    dates.push_back(date);
  }
  const bool areTexts = !areDates && std::all_of(dates.begin(), dates.end(), isShortText);
  if (areTexts) {
    const std::size_t common = commonLength(dates);
    for (Ranked& each : order) each.rank = textRank(std::string_view(*dates[each.place]->ifText()).substr(common));
  }
  if (areDates || areTexts) sortByRank(order);

  ValueComparison comparison;
  const auto isBefore = [&](const Ranked& left, const Ranked& right) {
    const Value* const a = dates[left.place];
    const Value* const b = dates[right.place];
    std::strong_ordering sides = std::strong_ordering::equal;
    if (areTexts) {
      sides = *a->ifText() <=> *b->ifText();
    } else if (!a || !b) {
      sides = (a != nullptr) <=> (b != nullptr);
    } else {
      sides = comparison.compare(*a, *b);
    }
    return sides != 0 ? sides < 0 : left.place < right.place;
  };
  for (auto run = order.begin(); !areDates && run != order.end();) {
    const auto end = areTexts
                         ? std::find_if(run, order.end(), [=](const Ranked& each) { return each.rank != run->rank; })
                         : order.end();
    if (end - run > 1) std::sort(run, end, isBefore);
    run = end;
  }

  ValueList sorted;
  sorted.reserve(order.size());
  for (const Ranked& each : order) sorted.push_back(records[each.place]);
  return sorted;
}

}  // namespace tavlo
