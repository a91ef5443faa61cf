// ValueNumbers: gives equal values equal numbers, and different values different ones.
//
// Values   numbers count up from 0 in the order in which new contents are met. Equal means what Value's
//          operator== says.
// Bounds   each contents is walked once, however often it is shared, so that a number costs time and memory
//          linear in what is new about the value (times a logarithm).
// Threads  one thread at a time.
//
// Contents are known again by where they lie, so all that were shown are kept.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "common/Value.h"

namespace tavlo {

class ValueNumbers {
 public:
  [[nodiscard]] std::size_t of(const Value& value);

 private:
  [[nodiscard]] std::string contentsOf(const Value& value);
  void appendSet(std::string& contents, const ValueList& items);
  void appendMap(std::string& contents, const ValueMap& entries);

  std::unordered_map<const void*, std::pair<Value, std::size_t>> byIdentity_;
  // By kind and contents, parts being numbers. No hash table: contents may be chosen to collide in one.
  std::map<std::string, std::size_t> byContents_;
};

// Where each key of a map stands: of equal ones, where the first one does.
class ValuePlaces {
 public:
  explicit ValuePlaces(ValueNumbers& numbers) : numbers_(numbers) {}

  // `next` for a key that is new, which stands there from then on.
  [[nodiscard]] std::size_t of(const Value& key, std::size_t next);

 private:
  ValueNumbers& numbers_;
  std::unordered_map<std::size_t, std::size_t> places_;
};

}  // namespace tavlo
