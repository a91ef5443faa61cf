// The table of places that stands in for a geocoder, as JSON (docs/locate.md has the format).
//
//   {"within": 25000, "places": [{"latitude": 52.52, "longitude": 13.405, "locality": "Berlin", "country": "Germany"}]}
//
// Absent   "within" that is missing or null is host::TableGeocoder::kUsuallyWithin; fields that are missing or null are
//          not known.
// Throws   Failure, whose line names the file, the line, the key and what was expected there.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/TableGeocoder.h"

namespace tavlo::cli {

struct PlaceTable {
  std::vector<host::TableGeocoder::Place> places;
  double within = host::TableGeocoder::kUsuallyWithin;  // metres
};

inline constexpr std::size_t kLongestPlaceTable = 64U << 20U;  // bytes

// "-" reads standard input.
[[nodiscard]] PlaceTable readPlaceTable(const std::string& path);

// `name` stands for the file in what is thrown.
[[nodiscard]] PlaceTable parsePlaceTable(std::string_view document, const std::string& name);

}  // namespace tavlo::cli
