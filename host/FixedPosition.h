// FixedPosition: location services that always know one position, for demos, tests and servers.
//
//   tavlo::linux_platform::make({.locationServices = std::make_shared<tavlo::host::FixedPosition>(
//                                    tavlo::platform::Coordinate{.latitude = 52.52, .longitude = 13.405})});
//
// Values   the services are on and the permission is 3, always. A manager knows the position at once, whatever its
//          filter and accuracy, started or not. The position goes through as it is, a place on Earth or not.
// Absent   an empty handler is not told.
// Threads  any thread, any time. What is asked for later is answered before the call returns, on the caller's thread.
// Throws   what an answered handler throws.
#pragma once

#include "platform/Location.h"

namespace tavlo::host {

class FixedPosition final : public platform::LocationServices {
 public:
  explicit FixedPosition(const platform::Coordinate& coordinate) : location_{coordinate} {}

  [[nodiscard]] bool locationServicesEnabled() override { return true; }
  [[nodiscard]] std::int32_t authorizationStatus() override { return platform::kCLAuthorizationStatusAuthorizedAlways; }
  [[nodiscard]] std::shared_ptr<platform::LocationManager> makeLocationManager() override;
  void requestAuthorization(StatusHandler answered) override;
  void requestLocation(LocationHandler answered) override;

 private:
  const platform::Location location_;
};

}  // namespace tavlo::host
