// A platform whose position and geocoder are stepped by hand. Each call is recorded in order:
//
//   locationServicesEnabled
//   authorizationStatus
//   console:<line>
//   makeLocationManager
//   setDistanceFilter:-1.000000
//   setDesiredAccuracy:-1.000000
//   startUpdatingLocation
//   location
//   setLatitude:28.500000 AndLogitude:77.250000     to the session package
//   setUserAddress:
//   makeGeocoder
//   reverseGeocodeLocation:28.500000,77.250000      (null) for an absent location
//
// For one thread at a time.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/Format.h"
#include "location/LocationSlots.h"
#include "platform/Platform.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo::test {

class LocationPlatform final : public platform::Platform {
 public:
  // All there are at the moment, of any platform.
  static inline int managersAlive = 0;

  platform::LocationServices& locationServices() override { return services_; }
  platform::Console& console() override { return console_; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override {
    note("makeGeocoder");
    return std::make_shared<HandGeocoder>(*this);
  }

  void note(std::string call) { calls_.push_back(std::move(call)); }

  // Everything asked since the last time.
  [[nodiscard]] std::vector<std::string> takeCalls() { return std::exchange(calls_, {}); }

  // What the look-up of this number, counted from 0, was asked and is answered.
  [[nodiscard]] std::size_t lookUps() const { return lookUps_.size(); }
  [[nodiscard]] const std::optional<platform::Location>& lookedUp(std::size_t number) const {
    return lookUps_.at(number).location;
  }
  void answer(std::size_t number, const std::optional<platform::Placemarks>& placemarks, const Text& error = {}) {
    const platform::GeocodeCompletionHandler handler = lookUps_.at(number).handler;
    handler(placemarks, error);
  }

  bool enabled = true;
  std::int32_t status = platform::kCLAuthorizationStatusAuthorizedAlways;
  std::deque<std::optional<platform::Location>> fixes;  // one a read; absent when there are no more

 private:
  struct LookUp {
    std::optional<platform::Location> location;
    platform::GeocodeCompletionHandler handler;
  };

  static std::string fixed(double value) {
    std::string text;
    appendFixed(text, value);
    return text;
  }

  class RecordedConsole final : public platform::Console {
   public:
    explicit RecordedConsole(LocationPlatform& platform) : platform_(platform) {}
    void log(std::string_view message) override { platform_.note("console:" + std::string(message)); }

   private:
    LocationPlatform& platform_;
  };

  class HandManager final : public platform::LocationManager {
   public:
    explicit HandManager(LocationPlatform& platform) : platform_(platform) { ++managersAlive; }
    ~HandManager() override { --managersAlive; }

    void setDistanceFilter(double distance) override { platform_.note("setDistanceFilter:" + fixed(distance)); }
    void setDesiredAccuracy(double accuracy) override { platform_.note("setDesiredAccuracy:" + fixed(accuracy)); }
    void startUpdatingLocation() override { platform_.note("startUpdatingLocation"); }
    std::optional<platform::Location> location() override {
      platform_.note("location");
      if (platform_.fixes.empty()) return std::nullopt;
      const auto fix = platform_.fixes.front();
      platform_.fixes.pop_front();
      return fix;
    }

   private:
    LocationPlatform& platform_;
  };

  class HandServices final : public platform::LocationServices {
   public:
    explicit HandServices(LocationPlatform& platform) : platform_(platform) {}

    bool locationServicesEnabled() override { return platform_.note("locationServicesEnabled"), platform_.enabled; }
    std::int32_t authorizationStatus() override { return platform_.note("authorizationStatus"), platform_.status; }
    std::shared_ptr<platform::LocationManager> makeLocationManager() override {
      platform_.note("makeLocationManager");
      return std::make_shared<HandManager>(platform_);
    }
    void requestAuthorization(StatusHandler) override { platform_.note("requestAuthorization"); }
    void requestLocation(LocationHandler) override { platform_.note("requestLocation"); }

   private:
    LocationPlatform& platform_;
  };

  class HandGeocoder final : public platform::Geocoder {
   public:
    explicit HandGeocoder(LocationPlatform& platform) : platform_(platform) {}
    void reverseGeocodeLocation(const std::optional<platform::Location>& location,
                                platform::GeocodeCompletionHandler completionHandler) override {
      const std::string where =
          location ? fixed(location->coordinate.latitude) + "," + fixed(location->coordinate.longitude) : "(null)";
      platform_.note("reverseGeocodeLocation:" + where);
      platform_.lookUps_.push_back({location, std::move(completionHandler)});
    }

   private:
    LocationPlatform& platform_;
  };

  std::vector<std::string> calls_;
  std::vector<LookUp> lookUps_;
  RecordedConsole console_{*this};
  HandServices services_{*this};
};

// Such a platform in place, with a session package that writes into the same record.
class LocationWorld {
 public:
  LocationWorld() {
    platform::install(platform_);
    package_->onWrite = [this](const std::string& write) { platform_->note(write); };
  }
  LocationWorld(const LocationWorld&) = delete;
  LocationWorld& operator=(const LocationWorld&) = delete;
  ~LocationWorld() {
    platform::install(nullptr);
    locationManager().store(nullptr);
  }

  LocationPlatform* operator->() const { return platform_.get(); }
  [[nodiscard]] RecordingPackage& package() const { return *package_; }
  [[nodiscard]] Text latitude() const { return package_->texts[PackageText::getLatitude]; }
  [[nodiscard]] Text longitude() const { return package_->texts[PackageText::getLongitude]; }
  [[nodiscard]] Text address() const { return package_->texts[PackageText::getUserAddress]; }

 private:
  std::shared_ptr<LocationPlatform> platform_ = std::make_shared<LocationPlatform>();
  Installed<TavloPackage, RecordingPackage> package_;
};

}  // namespace tavlo::test
