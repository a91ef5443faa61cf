#include "host/TableGeocoder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <string>
#include <utility>

#include "host/AnswerThread.h"

namespace tavlo::host {
namespace {

using platform::Coordinate;

constexpr double kMeanRadius = 6371008.8;  // metres

double radians(double degrees) { return degrees * (std::numbers::pi / 180); }

std::string metres(double distance) { return std::to_string(std::llround(distance)) + " m"; }

}  // namespace

TableGeocoder::TableGeocoder(std::vector<Place> places, double within)
    : table_(std::make_shared<const Table>(Table{.places = std::move(places), .within = within})) {
  if (!(within >= 0)) throw std::invalid_argument("the distance of a table of places must be 0 metres or more");
  for (const Place& place : table_->places) {
    if (isOnEarth(place.coordinate)) continue;
    const auto index = std::to_string(&place - table_->places.data());
    throw std::invalid_argument("place " + index + " of a table is none on Earth; latitudes are from -90 to 90 " +
                                "degrees, longitudes from -180 to 180");
  }
}

bool TableGeocoder::isOnEarth(const Coordinate& coordinate) {
  return std::abs(coordinate.latitude) <= 90 && std::abs(coordinate.longitude) <= 180;  // false for what is no number
}

// The haversine form, which is exact for places that are near; rounding may lead beyond 1 for opposite ones.
double TableGeocoder::distance(const Coordinate& from, const Coordinate& to) {
  const double north = std::sin(radians(to.latitude - from.latitude) / 2);
  const double east = std::sin(radians(to.longitude - from.longitude) / 2);
  const double square = north * north + std::cos(radians(from.latitude)) * std::cos(radians(to.latitude)) * east * east;
  return 2 * kMeanRadius * std::asin(std::sqrt(std::min(square, 1.0)));
}

void TableGeocoder::reverseGeocodeLocation(const std::optional<platform::Location>& location,
                                           platform::GeocodeCompletionHandler completionHandler) {
  AnswerThread::post([table = table_, location, handler = std::move(completionHandler)] {
    if (handler) answer(*table, location, handler);
  });
}

void TableGeocoder::answer(const Table& table, const std::optional<platform::Location>& location,
                           const platform::GeocodeCompletionHandler& handler) {
  if (!location) return handler(std::nullopt, "there is no position to look up");
  if (!isOnEarth(location->coordinate)) return handler(std::nullopt, "the position is no place on Earth");
  double least = std::numeric_limits<double>::infinity();
  const Place* nearest = nullptr;
  for (const Place& place : table.places) {
    const double away = distance(location->coordinate, place.coordinate);
    if (away >= least) continue;
    least = away;
    nearest = &place;
  }
  if (!nearest) return handler(std::nullopt, "the table has no places");
  if (least > table.within) {
    return handler(std::nullopt, "no place of the table is within " + metres(table.within) + "; the nearest is " +
                                     metres(least) + " away");
  }
  handler(platform::Placemarks{nearest->placemark}, std::nullopt);
}

}  // namespace tavlo::host
