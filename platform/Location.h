// The platform's position: whether the app may have it, and location managers that know it.
//
// Values   degrees, WGS 84, north and east positive. A status is one of the platform's numbers, but any 32-bit
//          integer may come.
// Absent   no position is known (yet).
// Threads  any thread, any time. Nothing here waits for a service or for a person; what is asked for later is
//          answered on a thread of the platform's choice, perhaps before the call has returned.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tavlo::platform {

struct Coordinate {
  double latitude = 0;
  double longitude = 0;

  friend bool operator==(const Coordinate&, const Coordinate&) = default;
};

struct Location {
  Coordinate coordinate;

  friend bool operator==(const Location&, const Location&) = default;
};

inline constexpr std::int32_t kCLAuthorizationStatusNotDetermined = 0;
inline constexpr std::int32_t kCLAuthorizationStatusRestricted = 1;
inline constexpr std::int32_t kCLAuthorizationStatusDenied = 2;
inline constexpr std::int32_t kCLAuthorizationStatusAuthorizedAlways = 3;
inline constexpr std::int32_t kCLAuthorizationStatusAuthorizedWhenInUse = 4;

inline constexpr double kCLDistanceFilterNone = -1;
inline constexpr double kCLLocationAccuracyBest = -1;

// May outlive the platform that made it.
class LocationManager {
 public:
  LocationManager() = default;
  LocationManager(const LocationManager&) = delete;
  LocationManager& operator=(const LocationManager&) = delete;
  virtual ~LocationManager() = default;

  // In metres, or one of the constants above.
  virtual void setDistanceFilter(double distance) = 0;
  virtual void setDesiredAccuracy(double accuracy) = 0;

  virtual void startUpdatingLocation() = 0;

  // The newest fix that is known, without waiting for one.
  [[nodiscard]] virtual std::optional<Location> location() = 0;
};

class LocationServices {
 public:
  using StatusHandler = std::function<void(std::int32_t status)>;
  using LocationHandler = std::function<void(const std::optional<Location>& location)>;

  LocationServices() = default;
  LocationServices(const LocationServices&) = delete;
  LocationServices& operator=(const LocationServices&) = delete;
  virtual ~LocationServices() = default;

  // Whether location services are on for the device.
  [[nodiscard]] virtual bool locationServicesEnabled() = 0;

  // The app's permission: 0 not determined, 1 restricted, 2 denied, 3 always, 4 when in use.
  [[nodiscard]] virtual std::int32_t authorizationStatus() = 0;

  // Never nullptr.
  [[nodiscard]] virtual std::shared_ptr<LocationManager> makeLocationManager() = 0;

  // Asks the user for permission, where it is not determined yet. Answered once, with the status.
  virtual void requestAuthorization(StatusHandler answered) = 0;

  // Asks for one fix. Answered once, with the fix, or with none when none will come.
  virtual void requestLocation(LocationHandler answered) = 0;
};

}  // namespace tavlo::platform
