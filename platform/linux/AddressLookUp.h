// AddressLookUp: the question to a Nominatim-compatible service, and what its answer means. One file implements it
// with the library that knows the service, another stands in where that is missing.
//
//   placemark             library         member of the answer's "address"
//   thoroughfare          street          road
//   subLocality           area            suburb
//   locality              town            city, else town, else village
//   administrativeArea    state           state
//   postalCode            postal code     postcode
//   country               country         country
//   ISOcountryCode        country code    country_code, in upper case
//
// Values   the URL asked is BASE/reverse?lon=…&format=json&email=…&lat=…&accept-language=…&addressdetails=1, its
//          members in any order, the language that of the process's locale.
// Absent   a field whose member is missing or "". A placemark with no field at all is an error.
// Threads  any thread; each call on its own.
#pragma once

#include <functional>
#include <string>

#include "common/Text.h"
#include "platform/Geocoder.h"

namespace tavlo::linux_platform {

struct AddressAnswer {
  platform::Placemark placemark;
  Text error;  // what went wrong, for people; absent: nothing
};

// Gives the answer of a URL, or throws std::runtime_error with what went wrong.
using FetchAnswer = std::function<std::string(const std::string& url)>;

// The coordinate must be a place on earth, the others UTF-8 without a NUL.
[[nodiscard]] AddressAnswer lookUpAddress(const std::string& baseUrl, const std::string& maintainer,
                                          const platform::Coordinate& place, const FetchAnswer& fetch);

}  // namespace tavlo::linux_platform
