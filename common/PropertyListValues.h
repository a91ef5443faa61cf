// Values of the objects of a checked property list, each made when it is asked for.
//
// Bounds   what is shared is made once and kept; what is not is made as often as it is asked for.
// Threads  one thread at a time.
// Throws   nothing but std::bad_alloc.
//
// The objects must outlive everything here.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/PropertyListObjects.h"
#include "common/Value.h"
#include "common/ValueNumbers.h"

namespace tavlo::property_list {

class Values {
 public:
  // An entry of a map: the numbers of its key and of its value.
  using Entry = std::pair<std::size_t, std::size_t>;

  explicit Values(const Objects& objects) : objects_(objects) {}

  // `isKept` says that it may be asked for again, though the property list refers to it once.
  [[nodiscard]] Value of(std::size_t number, bool isKept = false);

  // Of entries with equal keys the last one's value counts, at the first one's place.
  [[nodiscard]] std::vector<Entry> entries(const Objects::Object& map);

 private:
  [[nodiscard]] Value made(const Objects::Object& object);
  [[nodiscard]] ValueList items(const Objects::Object& object);

  const Objects& objects_;
  std::unordered_map<std::size_t, Value> kept_;
  ValueNumbers keys_;
};

}  // namespace tavlo::property_list
