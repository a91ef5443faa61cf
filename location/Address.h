// The address of a placemark, as the session package holds it.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/Geocoder.h"

namespace tavlo {

struct AddressMember {
  std::string_view key;
  std::string_view fieldName;
  Text platform::Placemark::*field;
};

// In their order. "locality" is the sub-locality, and "city" the locality; that is deliberate.
inline constexpr auto kAddressMembers = std::to_array<AddressMember>({
    {"state", "administrativeArea", &platform::Placemark::administrativeArea},
    {"locality", "subLocality", &platform::Placemark::subLocality},
    {"area", "thoroughfare", &platform::Placemark::thoroughfare},
    {"pin", "postalCode", &platform::Placemark::postalCode},
    {"city", "locality", &platform::Placemark::locality},
    {"country", "country", &platform::Placemark::country},
});

// One JSON object, on one line and without blanks, of the members whose fields are known. nullptr gives "{}".
//
// Escaped is what JSON requires, and the solidus; bytes that are no UTF-8 become U+FFFD, one each.
[[nodiscard]] std::string addressJson(const platform::Placemark* placemark);

}  // namespace tavlo
