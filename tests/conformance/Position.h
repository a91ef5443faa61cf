// The position and the geocoder of a case; answers come when the case says so.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/Format.h"
#include "platform/Geocoder.h"
#include "platform/Location.h"
#include "tests/conformance/Events.h"
#include "tests/conformance/Given.h"

namespace tavlo::conformance {

[[nodiscard]] inline std::string fixed(double value) {
  std::string text;
  appendFixed(text, value);
  return text;
}

// Each read of the location takes the next fix; the last one stays.
struct Fixes {
  explicit Fixes(const Value* location) {
    const Value* const several = location ? member(*location, "fixes") : nullptr;
    const Value* const one = location ? member(*location, "fix") : nullptr;
    if (several) all = itemsOf(several);
    if (one) all = {*one};
  }

  [[nodiscard]] std::optional<platform::Location> read() {
    if (all.empty()) return std::nullopt;
    const ValueList& degrees = itemsOf(&all[std::min(next++, all.size() - 1)]);
    if (degrees.empty()) return std::nullopt;
    return platform::Location{{.latitude = numberOf(degrees.at(0)), .longitude = numberOf(degrees.at(1))}};
  }

  ValueList all;
  std::size_t next = 0;
};

class GivenManager final : public platform::LocationManager {
 public:
  GivenManager(Seen seen, std::shared_ptr<Fixes> fixes) : seen_(std::move(seen)), fixes_(std::move(fixes)) {}

  void setDistanceFilter(double distance) override { seen_->asks.push_back("setDistanceFilter:" + fixed(distance)); }
  void setDesiredAccuracy(double accuracy) override { seen_->asks.push_back("setDesiredAccuracy:" + fixed(accuracy)); }
  void startUpdatingLocation() override { seen_->asks.emplace_back("startUpdatingLocation"); }
  std::optional<platform::Location> location() override { return seen_->asks.emplace_back("location"), fixes_->read(); }

 private:
  Seen seen_;
  std::shared_ptr<Fixes> fixes_;
};

class GivenServices final : public platform::LocationServices {
 public:
  GivenServices(const Value* location, Seen seen)
      : enabled_(truthOf(location ? member(*location, "enabled") : nullptr, true)),
        status_(static_cast<std::int32_t>(integerOf(location ? member(*location, "status") : nullptr, 3))),
        fixes_(std::make_shared<Fixes>(location)),
        seen_(std::move(seen)) {}

  bool locationServicesEnabled() override { return seen_->asks.emplace_back("locationServicesEnabled"), enabled_; }
  std::int32_t authorizationStatus() override { return seen_->asks.emplace_back("authorizationStatus"), status_; }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override {
    return std::make_shared<GivenManager>(seen_, fixes_);
  }
  void requestAuthorization(StatusHandler) override { seen_->asks.emplace_back("requestAuthorization"); }
  void requestLocation(LocationHandler) override { seen_->asks.emplace_back("requestLocation"); }

 private:
  bool enabled_;
  std::int32_t status_;
  std::shared_ptr<Fixes> fixes_;
  Seen seen_;
};

using LookUps = std::vector<platform::GeocodeCompletionHandler>;

class GivenGeocoder final : public platform::Geocoder {
 public:
  GivenGeocoder(Seen seen, std::shared_ptr<LookUps> lookUps) : seen_(std::move(seen)), lookUps_(std::move(lookUps)) {}

  void reverseGeocodeLocation(const std::optional<platform::Location>& location,
                              platform::GeocodeCompletionHandler completionHandler) override {
    seen_->asks.push_back(
        "reverseGeocodeLocation:" +
        (location ? fixed(location->coordinate.latitude) + "," + fixed(location->coordinate.longitude) : "(null)"));
    lookUps_->push_back(std::move(completionHandler));
  }

 private:
  Seen seen_;
  std::shared_ptr<LookUps> lookUps_;
};

// Absent unless it is a list.
[[nodiscard]] inline std::optional<platform::Placemarks> placemarksOf(const Value* given) {
  if (!given || !given->ifList()) return std::nullopt;
  platform::Placemarks placemarks;
  for (const Value& mark : itemsOf(given)) {
    const auto field = [&](std::string_view name) { return textOf(member(mark, name)); };
    placemarks.push_back({.ISOcountryCode = field("ISOcountryCode"),
                          .country = field("country"),
                          .postalCode = field("postalCode"),
                          .administrativeArea = field("administrativeArea"),
                          .locality = field("locality"),
                          .subLocality = field("subLocality"),
                          .thoroughfare = field("thoroughfare")});
  }
  return placemarks;
}

}  // namespace tavlo::conformance
