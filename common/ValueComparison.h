// ValueComparison: Value's order, for whoever compares many values that share contents.
//
// Values   what operator<=> says.
// Bounds   shared contents are compared once: those found equal count as one from then on, and the order of
//          those found different is kept.
// Threads  one thread at a time.
//
// Every value compared must outlive the ValueComparison: contents are known again by where they lie.
#pragma once

#include <compare>
#include <map>
#include <string>
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

  Order compareBytes(const Value& a, const Value& b, const std::string& bytesA, const std::string& bytesB);
  template <class Compare>
  Order compareOnce(const Value& a, const Value& b, Compare compareThem);
  const void* representative(const void* contents);
  Order compareContents(const Value& a, const Value& b);
  Order compareLists(const ValueList& a, const ValueList& b);
  Order compareUrls(const ValueUrl& a, const ValueUrl& b);
  Order compareMaps(const ValueMap& a, const ValueMap& b);
  Order compareSets(const ValueList& a, const ValueList& b);
  [[nodiscard]] ValueList sorted(ValueList items);
  [[nodiscard]] std::vector<const ValueMap::Entry*> sortedEntries(const ValueMap& map);

  std::unordered_map<const void*, const void*> equal_;
  std::map<std::pair<const void*, const void*>, Order> different_;
};

}  // namespace tavlo
