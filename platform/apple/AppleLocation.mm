#import "platform/apple/AppleLocation.h"

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

class AppleLocationManager final : public platform::LocationManager {
 public:
  void setDistanceFilter(double distance) override { [manager() setDistanceFilter:distance]; }
  void setDesiredAccuracy(double accuracy) override { [manager() setDesiredAccuracy:accuracy]; }
  void startUpdatingLocation() override { [manager() startUpdatingLocation]; }
  std::optional<platform::Location> location() override {
    CLLocation* const location = [manager() location];
    if (location == nil) return std::nullopt;
    const CLLocationCoordinate2D coordinate = [location coordinate];
    return platform::Location{{.latitude = coordinate.latitude, .longitude = coordinate.longitude}};
  }

 private:
  [[nodiscard]] CLLocationManager* manager() const { return manager_.get(); }

  const Retained manager_ = madeManager();
};

}  // namespace

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
