// The platform's reverse geocoder: from a position to the addresses there.
//
// Values   UTF-8 texts.
// Absent   a field of a placemark that is not known. Of an answer: an error has no placemarks.
// Threads  any thread, any time. The handler runs on a thread of the platform's choice, once a request (a
//          handler must bear to be called twice, or never); the answers of one platform come one after another.
// Throws   the handler may; that ends its own run only.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "common/Text.h"
#include "platform/Location.h"

namespace tavlo::platform {

struct Placemark {
  Text ISOcountryCode{};
  Text country{};
  Text postalCode{};
  Text administrativeArea{};
  Text locality{};
  Text subLocality{};
  Text thoroughfare{};

  // For people, in one line: the fields that are known, from the street to the country.
  [[nodiscard]] std::string description() const;

  friend bool operator==(const Placemark&, const Placemark&) = default;
};

// The answer: placemarks, the best one first, or the description of an error.
using Placemarks = std::vector<Placemark>;
using GeocodeCompletionHandler = std::function<void(const std::optional<Placemarks>& placemarks, const Text& error)>;

class Geocoder {
 public:
  Geocoder() = default;
  Geocoder(const Geocoder&) = delete;
  Geocoder& operator=(const Geocoder&) = delete;
  virtual ~Geocoder() = default;

  // Returns at once. The request goes on when the geocoder is gone. An absent location is answered with an error.
  virtual void reverseGeocodeLocation(const std::optional<Location>& location,
                                      GeocodeCompletionHandler completionHandler) = 0;
};

}  // namespace tavlo::platform
