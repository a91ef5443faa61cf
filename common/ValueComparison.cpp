#include "common/ValueComparison.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace tavlo {
namespace {

using Kind = Value::Kind;
using Order = std::strong_ordering;

constexpr std::size_t kMostDifferent = 1'000'000;

// Integer and real share a rank, so that numbers order by number.
int rank(Kind kind) { return static_cast<int>(kind == Kind::real ? Kind::integer : kind); }

// Doubles in numeric order, those that are no number first, and then by their bits.
Order compareDoubles(double a, double b) {
  if (a < b) return Order::less;
  if (a > b) return Order::greater;
  if (std::isnan(a) != std::isnan(b)) return std::isnan(a) ? Order::less : Order::greater;
  if (const Order sign = std::signbit(b) <=> std::signbit(a); sign != 0) return sign;
  return std::bit_cast<std::uint64_t>(a) <=> std::bit_cast<std::uint64_t>(b);
}

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 2 * kTwoTo63;
constexpr double kTwoTo127 = kTwoTo64 * kTwoTo63;

// Of a double that is whole and fits. Beyond 63 bits its last bits are zero, so that the lower half is exact;
// a small negative one has a lower half that no double holds.
Integer integerOf(double whole) {
  if (whole >= -kTwoTo63 && whole < kTwoTo63) return Integer::of(static_cast<std::int64_t>(whole));
  const double high = std::floor(whole / kTwoTo64);
  return {.high = static_cast<std::int64_t>(high), .low = static_cast<std::uint64_t>(whole - (high * kTwoTo64))};
}

// Exact: a double whose whole part fits 128 bits is compared as an integer, never the other way round.
Order compareIntegerWithDouble(const Integer& integer, double real) {
  if (std::isnan(real) || real < -kTwoTo127) return Order::greater;
  if (real >= kTwoTo127) return Order::less;
  const double whole = std::floor(real);
  if (const Order order = integer <=> integerOf(whole); order != 0) return order;
  return whole < real ? Order::less : Order::equal;
}

Order compareNumbers(const Value& a, const Value& b) {
  const Integer* const integerA = a.ifInteger();
  const Integer* const integerB = b.ifInteger();
  if (integerA && integerB) return *integerA <=> *integerB;
  if (integerA) {
    const Order order = compareIntegerWithDouble(*integerA, b.ifReal()->value);
    return order != 0 ? order : Order::less;
  }
  if (integerB) return 0 <=> compareNumbers(b, a);
  const Real* const realA = a.ifReal();
  const Real* const realB = b.ifReal();
  if (const Order order = compareDoubles(realA->value, realB->value); order != 0) return order;
  return realA->narrow <=> realB->narrow;
}

}  // namespace

std::size_t ValueComparison::PairHash::operator()(const Pair& pair) const {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  const auto first = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pair.first));
  const auto second = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pair.second));
  const std::uint64_t mixed = ((first * kOdd) + second) * kOdd;
  return static_cast<std::size_t>(mixed ^ (mixed >> 32U));
}

std::strong_ordering ValueComparison::compare(const Value& a, const Value& b) {
  if (const Order order = rank(a.kind()) <=> rank(b.kind()); order != 0) return order;
  switch (a.kind()) {
    case Kind::null: return Order::equal;
    case Kind::boolean: return *a.ifBoolean() <=> *b.ifBoolean();
    case Kind::integer:
    case Kind::real: return compareNumbers(a, b);
    case Kind::date: return compareDoubles(a.ifDate()->seconds, b.ifDate()->seconds);
    case Kind::uid: return a.ifUid()->index <=> b.ifUid()->index;
    case Kind::text: return compareBytes(a, b, *a.ifText(), *b.ifText());
    case Kind::data: return compareBytes(a, b, *a.ifData(), *b.ifData());
    default: return compareOnce(a, b, [&] { return compareContents(a, b); });
  }
}

// Short ones are compared faster than looked up.
std::strong_ordering ValueComparison::compareBytes(const Value& a, const Value& b, std::string_view bytesA,
                                                   std::string_view bytesB) {
  constexpr std::size_t kShort = 64;
  const bool areShared = a.identity() && b.identity();
  if (!areShared || std::min(bytesA.size(), bytesB.size()) <= kShort) return bytesA <=> bytesB;
  return compareOnce(a, b, [&] { return bytesA <=> bytesB; });
}

template <class Compare>
std::strong_ordering ValueComparison::compareOnce(const Value& a, const Value& b, Compare compareThem) {
  const Pair pair(representative(a.identity()), representative(b.identity()));
  if (pair.first == pair.second) return Order::equal;
  if (const auto known = different_.find(pair); known != different_.end()) return known->second;
  const Order order = compareThem();
  if (order != 0) {
    // A comparison that is made again costs no more than the way to the first difference.
    if (different_.size() == kMostDifferent) different_.clear();
    different_.emplace(pair, order);
  } else if (const void* const other = representative(pair.second); representative(pair.first) != other) {
    equal_[representative(pair.first)] = other;
  }
  return order;
}

// Of all contents found equal to these.
const void* ValueComparison::representative(const void* contents) {
  auto step = equal_.find(contents);
  while (step != equal_.end()) {
    const auto next = equal_.find(step->second);
    if (next == equal_.end()) return step->second;
    step->second = next->second;
    step = next;
  }
  return contents;
}

std::strong_ordering ValueComparison::compareContents(const Value& a, const Value& b) {
  switch (a.kind()) {
    case Kind::list: return compareLists(*a.ifList(), *b.ifList());
    case Kind::set: return compareSets(*a.ifSet(), *b.ifSet());
    case Kind::map: return compareMaps(*a.ifMap(), *b.ifMap());
    case Kind::url: return compareUrls(*a.ifUrl(), *b.ifUrl());
    default: {
      if (const Order order = a.ifObject()->className <=> b.ifObject()->className; order != 0) return order;
      return compareMaps(a.ifObject()->fields, b.ifObject()->fields);
    }
  }
}

std::strong_ordering ValueComparison::compareLists(const ValueList& a, const ValueList& b) {
  const std::size_t both = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < both; ++i) {
    if (const Order order = compare(a[i], b[i]); order != 0) return order;
  }
  return a.size() <=> b.size();
}

std::strong_ordering ValueComparison::compareUrls(const ValueUrl& a, const ValueUrl& b) {
  if (const Order order = a.text <=> b.text; order != 0) return order;
  if (!a.base || !b.base) return a.base.has_value() <=> b.base.has_value();
  return compare(*a.base, *b.base);
}

std::strong_ordering ValueComparison::compareMaps(const ValueMap& a, const ValueMap& b) {
  return compareEntries(sortedEntries(a), sortedEntries(b));
}

std::strong_ordering ValueComparison::compareSets(const ValueList& a, const ValueList& b) {
  return compareEntries(sortedItems(a), sortedItems(b));
}

std::strong_ordering ValueComparison::compareEntries(const Entries& a, const Entries& b) {
  const std::size_t both = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < both; ++i) {
    if (const Order order = compare(*a[i].key, *b[i].key); order != 0) return order;
    if (!a[i].value) continue;
    if (const Order order = compare(*a[i].value, *b[i].value); order != 0) return order;
  }
  return a.size() <=> b.size();
}

// Sorting compares the items, which may sort sets inside them: the table may grow meanwhile, its vectors stay put.
const ValueComparison::Entries& ValueComparison::sortedItems(const ValueList& set) {
  Entries& entries = sorted_[&set];
  if (entries.size() == set.size()) return entries;
  entries.reserve(set.size());
  for (const Value& item : set) entries.push_back({.key = &item});
  sort(entries);
  return entries;
}

const ValueComparison::Entries& ValueComparison::sortedEntries(const ValueMap& map) {
  Entries& entries = sorted_[&map];
  if (entries.size() == map.size()) return entries;
  entries.reserve(map.size());
  for (const auto& [key, value] : map) entries.push_back({.key = &key, .value = &value});
  sort(entries);
  return entries;
}

// By a heap, which is half the code of std::sort().
void ValueComparison::sort(Entries& entries) {
  const auto isLess = [this](const Entry& a, const Entry& b) { return compare(*a.key, *b.key) < 0; };
  std::make_heap(entries.begin(), entries.end(), isLess);
  std::sort_heap(entries.begin(), entries.end(), isLess);
}

}  // namespace tavlo
