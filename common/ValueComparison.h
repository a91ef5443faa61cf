// ValueComparison: Value's order, for whoever compares many values that share contents.
//
// Values   what operator<=> says.
// Bounds   shared contents are compared once: those found equal count as one from then on, and the order of
//          those found different is kept, of the last million of pairs. A set's items and a map's entries are
//          sorted once. Memory is linear in the values compared, beside those pairs.
// Threads  one thread at a time.
//
// Every value compared must outlive the ValueComparison: contents are known again by where they lie.
#pragma once

#include <compare>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/Value.h"

namespace tavlo {

class ValueComparison {
 public:
  [[nodiscard]] std::strong_ordering compare(const Value& a, const Value& b);

 private:
  using Order = std::strong_ordering;
  using Pair = std::pair<const void*, const void*>;

  struct PairHash {
    std::size_t operator()(const Pair& pair) const;
  };

  Order compareBytes(const Value& a, const Value& b, std::string_view bytesA, std::string_view bytesB);
  template <class Compare>
  Order compareOnce(const Value& a, const Value& b, Compare compareThem);
  const void* representative(const void* contents);
  Order compareContents(const Value& a, const Value& b);
  Order compareLists(const ValueList& a, const ValueList& b);
  Order compareUrls(const ValueUrl& a, const ValueUrl& b);
  Order compareMaps(const ValueMap& a, const ValueMap& b);
  Order compareSets(const ValueList& a, const ValueList& b);

  // An entry of a map, or an item of a set, which has no value.
  struct Entry {
    const Value* key = nullptr;
    const Value* value = nullptr;
  };
  using Entries = std::vector<Entry>;
  Order compareEntries(const Entries& a, const Entries& b);
  [[nodiscard]] const Entries& sortedItems(const ValueList& set);
  [[nodiscard]] const Entries& sortedEntries(const ValueMap& map);
  void sort(Entries& entries);

  std::unordered_map<const void*, const void*> equal_;
  std::unordered_map<Pair, Order, PairHash> different_;
  std::unordered_map<const void*, Entries> sorted_;
};

}  // namespace tavlo
