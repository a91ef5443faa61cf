#include "host/FixedPosition.h"

namespace tavlo::host {
namespace {

class FixedManager final : public platform::LocationManager {
 public:
  explicit FixedManager(const platform::Location& location) : location_(location) {}

  void setDistanceFilter(double /*distance*/) override {}
  void setDesiredAccuracy(double /*accuracy*/) override {}
  void startUpdatingLocation() override {}
  std::optional<platform::Location> location() override { return location_; }

 private:
  const platform::Location location_;
};

}  // namespace

std::shared_ptr<platform::LocationManager> FixedPosition::makeLocationManager() {
  return std::make_shared<FixedManager>(location_);
}

void FixedPosition::requestAuthorization(StatusHandler answered) {
  if (answered) answered(authorizationStatus());
}

void FixedPosition::requestLocation(LocationHandler answered) {
  if (answered) answered(location_);
}

}  // namespace tavlo::host
