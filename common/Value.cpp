#include "common/Value.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>

namespace tavlo {
namespace {

using Kind = Value::Kind;
using Order = std::strong_ordering;

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

// Exact: a double whose whole part fits 128 bits is compared as an integer, never the other way round.
Order compareIntegerWithDouble(const Integer& integer, double real) {
  constexpr double kTwoTo64 = 18446744073709551616.0;
  constexpr double kTwoTo127 = kTwoTo64 * 9223372036854775808.0;
  if (std::isnan(real) || real < -kTwoTo127) return Order::greater;
  if (real >= kTwoTo127) return Order::less;
  const double whole = std::floor(real);
  const double high = std::floor(whole / kTwoTo64);
  const Integer floor{.high = static_cast<std::int64_t>(high),
                      .low = static_cast<std::uint64_t>(whole - (high * kTwoTo64))};
  if (const Order order = integer <=> floor; order != 0) return order;
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

// Compares values of any depth of sharing in time linear in the pairs of contents met: the outcome for each
// pair of shared contents is kept.
class Comparison {
 public:
  Order compare(const Value& a, const Value& b) {
    if (const Order order = rank(a.kind()) <=> rank(b.kind()); order != 0) return order;
    switch (a.kind()) {
      case Kind::null: return Order::equal;
      case Kind::boolean: return *a.ifBoolean() <=> *b.ifBoolean();
      case Kind::integer:
      case Kind::real: return compareNumbers(a, b);
      case Kind::date: return compareDoubles(a.ifDate()->seconds, b.ifDate()->seconds);
      case Kind::uid: return a.ifUid()->index <=> b.ifUid()->index;
      case Kind::text: return *a.ifText() <=> *b.ifText();
      case Kind::data: return *a.ifData() <=> *b.ifData();
      default: return compareShared(a, b);
    }
  }

 private:
  Order compareShared(const Value& a, const Value& b) {
    const auto pair = std::pair(a.identity(), b.identity());
    if (pair.first == pair.second) return Order::equal;
    if (const auto known = known_.find(pair); known != known_.end()) return known->second;
    const Order order = compareContents(a, b);
    known_.emplace(pair, order);
    return order;
  }

  Order compareContents(const Value& a, const Value& b) {
    switch (a.kind()) {
      case Kind::list: return compareLists(*a.ifList(), *b.ifList());
      case Kind::set: return comparePointers(sorted(*a.ifSet()), sorted(*b.ifSet()));
      case Kind::map: return compareMaps(*a.ifMap(), *b.ifMap());
      case Kind::url: return compareUrls(*a.ifUrl(), *b.ifUrl());
      default: {
        if (const Order order = a.ifObject()->className <=> b.ifObject()->className; order != 0) return order;
        return compareMaps(a.ifObject()->fields, b.ifObject()->fields);
      }
    }
  }

  Order compareLists(const ValueList& a, const ValueList& b) {
    const std::size_t both = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < both; ++i) {
      if (const Order order = compare(a[i], b[i]); order != 0) return order;
    }
    return a.size() <=> b.size();
  }

  Order compareUrls(const ValueUrl& a, const ValueUrl& b) {
    if (const Order order = a.text <=> b.text; order != 0) return order;
    if (!a.base || !b.base) return a.base.has_value() <=> b.base.has_value();
    return compare(*a.base, *b.base);
  }

  Order compareMaps(const ValueMap& a, const ValueMap& b) {
    const auto entriesA = sortedEntries(a);
    const auto entriesB = sortedEntries(b);
    const std::size_t both = std::min(entriesA.size(), entriesB.size());
    for (std::size_t i = 0; i < both; ++i) {
      if (const Order order = compare(entriesA[i]->first, entriesB[i]->first); order != 0) return order;
      if (const Order order = compare(entriesA[i]->second, entriesB[i]->second); order != 0) return order;
    }
    return a.size() <=> b.size();
  }

  Order comparePointers(const std::vector<const Value*>& a, const std::vector<const Value*>& b) {
    const std::size_t both = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < both; ++i) {
      if (const Order order = compare(*a[i], *b[i]); order != 0) return order;
    }
    return a.size() <=> b.size();
  }

  std::vector<const Value*> sorted(const ValueList& items) {
    std::vector<const Value*> pointers;
    pointers.reserve(items.size());
    for (const Value& item : items) pointers.push_back(&item);
    std::sort(pointers.begin(), pointers.end(), [this](auto* x, auto* y) { return compare(*x, *y) < 0; });
    return pointers;
  }

  std::vector<const ValueMap::Entry*> sortedEntries(const ValueMap& map) {
    std::vector<const ValueMap::Entry*> pointers;
    pointers.reserve(map.size());
    for (const auto& entry : map) pointers.push_back(&entry);
    std::sort(pointers.begin(), pointers.end(), [this](auto* x, auto* y) { return compare(x->first, y->first) < 0; });
    return pointers;
  }

  std::map<std::pair<const void*, const void*>, Order> known_;
};

}  // namespace

std::string Integer::decimal() const {
  // Schoolbook division by ten over four 32-bit digits of the magnitude.
  std::uint64_t top = static_cast<std::uint64_t>(high);
  std::uint64_t bottom = low;
  const bool negative = high < 0;
  if (negative) {
    bottom = ~bottom + 1;
    top = ~top + (bottom == 0 ? 1 : 0);
  }
  std::string digits;
  while (top != 0 || bottom != 0) {
    std::uint64_t remainder = 0;
    for (std::uint64_t* const word : {&top, &bottom}) {
      const std::uint64_t upper = (remainder << 32U) | (*word >> 32U);
      const std::uint64_t lower = ((upper % 10) << 32U) | (*word & 0xFFFFFFFFU);
      *word = ((upper / 10) << 32U) | (lower / 10);
      remainder = lower % 10;
    }
    digits.push_back(static_cast<char>('0' + remainder));
  }
  if (digits.empty()) digits.push_back('0');
  if (negative) digits.push_back('-');
  std::reverse(digits.begin(), digits.end());
  return digits;
}

template <Value::Kind kind, class T>
Value Value::holding(T contents) {
  Value value;
  value.content_.emplace<static_cast<std::size_t>(kind)>(std::make_shared<const T>(std::move(contents)));
  return value;
}

Value::Value(std::string text) : Value(holding<Kind::text>(std::move(text))) {}

Value Value::data(std::string bytes) { return holding<Kind::data>(std::move(bytes)); }
Value Value::list(ValueList items) { return holding<Kind::list>(std::move(items)); }
Value Value::set(ValueList items) { return holding<Kind::set>(std::move(items)); }
Value Value::map(ValueMap entries) { return holding<Kind::map>(std::move(entries)); }
Value Value::url(ValueUrl url) { return holding<Kind::url>(std::move(url)); }
Value Value::object(ValueObject object) { return holding<Kind::object>(std::move(object)); }

const void* Value::identity() const {
  return std::visit(
      [](const auto& content) -> const void* {
        if constexpr (requires { content.get(); }) {
          return content.get();
        } else {
          return nullptr;
        }
      },
      content_);
}

std::strong_ordering operator<=>(const Value& a, const Value& b) { return Comparison().compare(a, b); }

ValueMap::ValueMap(std::vector<Entry> entries) : entries_(std::move(entries)) {
  std::vector<std::size_t> byKey(entries_.size());
  for (std::size_t i = 0; i < byKey.size(); ++i) byKey[i] = i;
  std::stable_sort(byKey.begin(), byKey.end(),
                   [this](std::size_t x, std::size_t y) { return entries_[x].first < entries_[y].first; });
  std::vector<bool> superseded(entries_.size());
  for (std::size_t i = 0; i < byKey.size();) {
    const std::size_t first = byKey[i];
    for (++i; i < byKey.size() && entries_[byKey[i]].first == entries_[first].first; ++i) {
      entries_[first].second = std::move(entries_[byKey[i]].second);
      superseded[byKey[i]] = true;
    }
  }
  std::size_t index = 0;
  std::erase_if(entries_, [&](const Entry&) { return superseded[index++]; });
}

void ValueMap::set(Value key, Value value) {
  const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.first == key; });
  if (entry != entries_.end()) {
    entry->second = std::move(value);
  } else {
    append(std::move(key), std::move(value));
  }
}

const Value* ValueMap::find(std::string_view key) const {
  for (const auto& [entryKey, value] : entries_) {
    if (const std::string* text = entryKey.ifText(); text && *text == key) return &value;
  }
  return nullptr;
}

}  // namespace tavlo
