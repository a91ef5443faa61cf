// Positions by CLLocationManager, addresses by CLGeocoder.
//
// Absent   without CoreLocation services are off, and the geocoder answers with an error. An absent location is handed
//          on to the geocoder; what that raises before it answers is an error of its answer. Of several placemarks the
//          first one is read. An answer counts once.
// Threads  as CoreLocation says: managers on a thread with a run loop. Its answers come on the main thread.
// Throws   the completion handler's std::out_of_range, for a list without placemarks, as an NSRangeException.
//
// This component never asks for permission: requestAuthorization() answers with the permission that the app has, and
// requestLocation() with the newest fix that is known.
//
// Not run here with CoreLocation itself: stand-in classes of the tests take its place.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Geocoder.h"
#include "platform/Location.h"

namespace tavlo::apple_platform {

class AppleLocationServices final : public platform::LocationServices {
 public:
  [[nodiscard]] bool locationServicesEnabled() override;
  [[nodiscard]] std::int32_t authorizationStatus() override;
  [[nodiscard]] std::shared_ptr<platform::LocationManager> makeLocationManager() override;
  void requestAuthorization(StatusHandler answered) override;
  void requestLocation(LocationHandler answered) override;
};

// The CLLocation that a manager gave last, with all that it knows beyond its place, when it is at this place; else one
// made of the place, nil without CoreLocation.
[[nodiscard]] id locationAt(const platform::Coordinate& place);

[[nodiscard]] std::shared_ptr<platform::Geocoder> makeAppleGeocoder();

}  // namespace tavlo::apple_platform
