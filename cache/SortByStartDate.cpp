#include "cache/SortByStartDate.h"

#include <algorithm>

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

}  // namespace

ValueList sortedByStartDate(const ValueList& records) {
  std::vector<Keyed> order;
  order.reserve(records.size());
  for (const Value& record : records) order.push_back({.startDate = startDateOf(record), .record = &record});
  ValueComparison comparison;
  std::stable_sort(order.begin(), order.end(), [&](const Keyed& a, const Keyed& b) {
    if (!a.startDate || !b.startDate) return !a.startDate && b.startDate;
    return comparison.compare(*a.startDate, *b.startDate) < 0;
  });

  ValueList sorted;
  sorted.reserve(records.size());
  for (const Keyed& keyed : order) sorted.push_back(*keyed.record);
  return sorted;
}

}  // namespace tavlo
