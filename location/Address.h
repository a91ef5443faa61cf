// The address of a placemark, as the session package holds it.
#pragma once

#include <string>

#include "platform/Geocoder.h"

namespace tavlo {

// One JSON object, on one line and without blanks, of the fields that are known, in this order: "state",
// "locality" (the sub-locality), "area" (the street), "pin" (the postal code), "city" (the locality), "country".
// nullptr gives "{}".
//
// Escaped is what JSON requires, and the solidus; bytes that are no UTF-8 become U+FFFD, one each.
[[nodiscard]] std::string addressJson(const platform::Placemark* placemark);

}  // namespace tavlo
