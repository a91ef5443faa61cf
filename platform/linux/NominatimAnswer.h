// What a Nominatim-compatible service answers, made fit for the library that reads it.
//
// The library takes the place's name from the members "city" and "village" alone, the last of them; it nests as deep
// as the answer does, and complains, which ends a program under test, where a coordinate is missing or is none.
//
// Values   one JSON object. In its member "address" the first of city, town and village that is there is called
//          "city", the others go by names that mean nothing. Coordinates and the like, which nobody asks for here, are
//          replaced by harmless ones.
// Absent   anything else: no UTF-8, no object, values nested deeper than 32, text behind the end. Whether what lies
//          within the brackets is JSON is for the library to say.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavlo::linux_platform {

[[nodiscard]] std::optional<std::string> preparedNominatimAnswer(std::string_view answer);

}  // namespace tavlo::linux_platform
