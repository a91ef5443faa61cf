#include <array>
#include <string>
#include <string_view>

#include "TavloUtility.h"
#include "common/Format.h"
#include "location/Address.h"
#include "location/LocationSlots.h"
#include "platform/Platform.h"
#include "request/TavloPackage.h"

namespace tavlo {
namespace {

using platform::Console;
using platform::Location;
using platform::LocationManager;
using platform::Placemark;

constexpr std::string_view kAuthorization = "location authorization: ";

constexpr std::string_view kAnswered = "reverseGeocodeLocation:completionHandler: Completion Handler called!";
constexpr std::string_view kFailed = "Geocode failed with error: ";
constexpr std::string_view kPlacemark = "placemarks=";  // the first one only
constexpr std::string_view kCurrent = "Current Location";

struct FieldLine {
  std::string_view label;
  Text Placemark::*field;
};

// The last label says sub-thoroughfare and stands before the street; that is deliberate.
constexpr auto kFieldLines = std::to_array<FieldLine>({
    {"placemark.ISOcountryCode =", &Placemark::ISOcountryCode},
    {"placemark.country =", &Placemark::country},
    {"placemark.postalCode =", &Placemark::postalCode},
    {"placemark.administrativeArea =", &Placemark::administrativeArea},
    {"placemark.locality =", &Placemark::locality},
    {"placemark.subLocality =", &Placemark::subLocality},
    {"placemark.subThoroughfare =", &Placemark::thoroughfare},
});

bool isAuthorized(std::int32_t status) {
  return status == platform::kCLAuthorizationStatusAuthorizedAlways ||
         status == platform::kCLAuthorizationStatusAuthorizedWhenInUse;
}

void logWith(Console& console, std::string_view label, const Text& value) {
  std::string line(label);
  appendText(line, value);
  console.log(line);
}

std::string fixed(double degrees) {
  std::string text;
  appendFixed(text, degrees);
  return text;
}

std::shared_ptr<LocationManager> startedManager(platform::LocationServices& services) {
  auto manager = services.makeLocationManager();
  locationManager().store(manager);
  manager->setDistanceFilter(platform::kCLDistanceFilterNone);
  manager->setDesiredAccuracy(platform::kCLLocationAccuracyBest);
  manager->startUpdatingLocation();
  return manager;
}

void setPosition(const platform::Coordinate& coordinate) {
  if (const auto package = TavloPackage::sharedInstance()) {
    package->setLatitudeAndLogitude(fixed(coordinate.latitude), fixed(coordinate.longitude));
  }
}

void setAddress(const std::string& address) {
  if (const auto package = TavloPackage::sharedInstance()) package->setUserAddress(address);
}

// What an earlier fetch asked for may come last, and then is the address; so it keeps nothing of its fetch.
void reverseGeocoded(const std::optional<platform::Placemarks>& placemarks, const Text& error) {
  const auto platform = platform::current();
  Console& console = platform->console();
  console.log(kAnswered);
  if (error) return logWith(console, kFailed, error);
  const Placemark* const first = placemarks ? &placemarks->at(0) : nullptr;  // an empty list throws, deliberately
  logWith(console, kPlacemark, first ? Text(first->description()) : std::nullopt);
  console.log(kCurrent);
  for (const auto& [label, field] : kFieldLines) logWith(console, label, first ? first->*field : std::nullopt);
  setAddress(addressJson(first));
}

}  // namespace

Slot<LocationManager>& locationManager() { return processSlot<LocationManager>(); }
Slot<const Location>& currentLocation() { return processSlot<const Location>(); }

// The position is read twice: a fix may come in between, and then the address is that of the newer one.
void TavloUtility::fetchCurrentLocation() {
  const auto platform = platform::current();
  platform::LocationServices& services = platform->locationServices();
  if (!services.locationServicesEnabled()) return;
  const std::int32_t status = services.authorizationStatus();
  std::string line(kAuthorization);
  appendInteger(line, status);
  platform->console().log(line);
  if (!isAuthorized(status)) return;

  const auto manager = startedManager(services);
  setPosition(manager->location().value_or(Location()).coordinate);
  setAddress("");
  const auto geocoder = platform->makeGeocoder();
  geocoder->reverseGeocodeLocation(manager->location(), reverseGeocoded);
}

}  // namespace tavlo
