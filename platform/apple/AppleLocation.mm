#import "platform/apple/AppleLocation.h"

#include <mutex>
#include <utility>

#import "platform/apple/DeviceFrameworks.h"
#import "platform/apple/Retained.h"

namespace tavlo::apple_platform {
namespace {

Class managers() { return NSClassFromString(@"CLLocationManager"); }

Retained madeManager() {
  const id made = [[managers() alloc] init];
  const Retained manager(made);
#if !__has_feature(objc_arc)
  [made release];
#endif
  return manager;
}

// The component's locations are places only; the geocoder gets the platform's own object all the same.
class NewestLocation {
 public:
  void keep(id location) {
    Retained kept(location);
    const std::lock_guard lock(mutex_);
    std::swap(kept, location_);
  }
  Retained get() {
    const std::lock_guard lock(mutex_);
    return location_;
  }

 private:
  std::mutex mutex_;
  Retained location_;
};

NewestLocation& newestLocation() {
  static auto* const newest = new NewestLocation;  // for good: the geocoder may ask while the program ends
  return *newest;
}

class AppleLocationManager final : public platform::LocationManager {
 public:
  void setDistanceFilter(double distance) override { [manager() setDistanceFilter:distance]; }
  void setDesiredAccuracy(double accuracy) override { [manager() setDesiredAccuracy:accuracy]; }
  void startUpdatingLocation() override { [manager() startUpdatingLocation]; }
  std::optional<platform::Location> location() override {
    CLLocation* const location = [manager() location];
    newestLocation().keep(location);
    if (location == nil) return std::nullopt;
    const CLLocationCoordinate2D coordinate = [location coordinate];
    return platform::Location{{.latitude = coordinate.latitude, .longitude = coordinate.longitude}};
  }

 private:
  [[nodiscard]] CLLocationManager* manager() const { return manager_.get(); }

  const Retained manager_ = madeManager();
};

}  // namespace

id locationAt(const platform::Coordinate& place) {
  const Retained newest = newestLocation().get();
  if (CLLocation* const known = newest.get()) {
    const CLLocationCoordinate2D there = [known coordinate];
    if (there.latitude == place.latitude && there.longitude == place.longitude) return newest.autoreleased();
  }
  return autoreleased([[NSClassFromString(@"CLLocation") alloc] initWithLatitude:place.latitude
                                                                       longitude:place.longitude]);
}

bool AppleLocationServices::locationServicesEnabled() { return [managers() locationServicesEnabled]; }

std::int32_t AppleLocationServices::authorizationStatus() {
  return static_cast<std::int32_t>([managers() authorizationStatus]);
}

std::shared_ptr<platform::LocationManager> AppleLocationServices::makeLocationManager() {
  return std::make_shared<AppleLocationManager>();
}

void AppleLocationServices::requestAuthorization(StatusHandler answered) { answered(authorizationStatus()); }

void AppleLocationServices::requestLocation(LocationHandler answered) {
  const auto manager = makeLocationManager();
  manager->startUpdatingLocation();
  answered(manager->location());
}

}  // namespace tavlo::apple_platform
