// TableGeocoder: a geocoder that looks up the nearest place of a table, for demos, tests and servers without a service.
//
//   using tavlo::host::TableGeocoder;
//   auto geocoder = std::make_shared<TableGeocoder>(std::vector<TableGeocoder::Place>{
//       {.coordinate = {.latitude = 52.52, .longitude = 13.405}, .placemark = {.country = "Germany", .locality =
//       "Berlin"}},
//   });
//
// Values   distances are great circles on a sphere of the Earth's mean radius, 6,371,008.8 metres, good to 0.6 percent.
//          The nearest place answers, of equally near ones the first of the table, if it is at most `within` metres
//          away; its placemark is the only one of the answer. Antimeridian and poles are no borders.
// Absent   an error through the handler: the location is absent, or no place on Earth (not finite, beyond 90 or 180
//          degrees), or no place of the table is near enough.
// Threads  any thread, any time. Handlers run on the AnswerThread.h, in the order of the requests of all tables, also
//          when the geocoder is gone by then.
// Throws   std::invalid_argument from the constructor, when a coordinate of the table is no place on Earth, or `within`
//          is negative or no number. What a handler throws ends its own run only.
#pragma once

#include <memory>
#include <vector>

#include "platform/Geocoder.h"

namespace tavlo::host {

class TableGeocoder final : public platform::Geocoder {
 public:
  struct Place {
    platform::Coordinate coordinate;
    platform::Placemark placemark;
  };

  static constexpr double kUsuallyWithin = 25000;  // metres

  explicit TableGeocoder(std::vector<Place> places, double within = kUsuallyWithin);

  void reverseGeocodeLocation(const std::optional<platform::Location>& location,
                              platform::GeocodeCompletionHandler completionHandler) override;

  // Whether both are finite and within 90 and 180 degrees.
  [[nodiscard]] static bool isOnEarth(const platform::Coordinate& coordinate);

  // In metres, between two places on Earth.
  [[nodiscard]] static double distance(const platform::Coordinate& from, const platform::Coordinate& to);

 private:
  struct Table {
    std::vector<Place> places;
    double within;
  };

  static void answer(const Table& table, const std::optional<platform::Location>& location,
                     const platform::GeocodeCompletionHandler& handler);

  const std::shared_ptr<const Table> table_;  // shared with the requests that are under way
};

}  // namespace tavlo::host
