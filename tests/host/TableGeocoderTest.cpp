#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "host/TableGeocoder.h"
#include "tests/support/CaseName.h"
#include "tests/support/Gate.h"

namespace tavlo::host {
namespace {

using platform::Coordinate;
using platform::Location;
using platform::Placemark;
using platform::Placemarks;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

struct Answer {
  std::optional<Placemarks> placemarks;
  Text error;
};

// Waits for the answer; by then the geocoder may be gone.
Answer ask(TableGeocoder& geocoder, const std::optional<Location>& location) {
  Answer answer;
  test::Gate answered;
  geocoder.reverseGeocodeLocation(location, [&](const std::optional<Placemarks>& placemarks, const Text& error) {
    answer = {.placemarks = placemarks, .error = error};
    answered.open();
  });
  answered.wait();
  return answer;
}

TableGeocoder::Place place(double latitude, double longitude, const char* city) {
  return {.coordinate = {.latitude = latitude, .longitude = longitude}, .placemark = {.locality = city}};
}

std::vector<TableGeocoder::Place> cities() {
  return {place(52.52, 13.405, "Berlin"), place(48.137, 11.575, "Munich"), place(-33.8688, 151.2093, "Sydney"),
          place(-17.0, 179.9, "Taveuni"), place(89.9, 0, "Camp Barneo")};
}

struct LookUp {
  const char* name;
  Coordinate where;
  const char* city;
};

class TableGeocoderLookUps : public testing::TestWithParam<LookUp> {};

TEST_P(TableGeocoderLookUps, NearestPlaceAnswers) {
  TableGeocoder geocoder(cities());

  const Answer answer = ask(geocoder, Location{GetParam().where});

  EXPECT_EQ(answer.placemarks, Placemarks{Placemark{.locality = GetParam().city}});
  EXPECT_EQ(answer.error, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Places, TableGeocoderLookUps,
                         testing::Values(LookUp{"TheVeryPlace", {52.52, 13.405}, "Berlin"},
                                         LookUp{"ALittleBeside", {48.2, 11.6}, "Munich"},
                                         LookUp{"SouthAndEast", {-33.9, 151.2}, "Sydney"},
                                         LookUp{"AcrossTheAntimeridian", {-17.0, -179.9}, "Taveuni"},
                                         LookUp{"AcrossThePole", {89.9, 180}, "Camp Barneo"}),
                         test::kCaseName);

struct Refusal {
  const char* name;
  std::optional<Location> where;
  const char* error;
};

class TableGeocoderRefusals : public testing::TestWithParam<Refusal> {};

TEST_P(TableGeocoderRefusals, AnswerIsAnError) {
  TableGeocoder geocoder(cities());

  const Answer answer = ask(geocoder, GetParam().where);

  EXPECT_EQ(answer.placemarks, std::nullopt);
  EXPECT_EQ(answer.error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Positions, TableGeocoderRefusals,
    testing::Values(Refusal{"Absent", std::nullopt, "there is no position to look up"},
                    Refusal{"NoNumber", Location{{kNoNumber, 13}}, "the position is no place on Earth"},
                    Refusal{"Infinite", Location{{52, kInfinite}}, "the position is no place on Earth"},
                    Refusal{"BeyondThePole", Location{{90.001, 0}}, "the position is no place on Earth"},
                    Refusal{"BeyondTheAntimeridian", Location{{0, -180.5}}, "the position is no place on Earth"},
                    Refusal{"TooFar", Location{{51.52, 13.405}},
                            "no place of the table is within 25000 m; the nearest is 111195 m away"}),
    test::kCaseName);

TEST(TableGeocoder, EmptyTableIsAnError) {
  TableGeocoder geocoder({});

  EXPECT_EQ(ask(geocoder, Location{}).error, "the table has no places");
}

TEST(TableGeocoder, OfEquallyNearPlacesTheFirstAnswers) {
  TableGeocoder geocoder({place(0, 0.1, "east"), place(0, -0.1, "west"), place(0.1, 0, "north")});

  EXPECT_EQ(ask(geocoder, Location{}).placemarks, Placemarks{Placemark{.locality = "east"}});
}

TEST(TableGeocoder, DistanceThatIsAllowedReachesThePlaceItself) {
  TableGeocoder geocoder({place(1, 2, "here")}, 0);

  EXPECT_EQ(ask(geocoder, Location{{1, 2}}).placemarks, Placemarks{Placemark{.locality = "here"}});
  EXPECT_EQ(ask(geocoder, Location{{1, 2.001}}).error,
            "no place of the table is within 0 m; the nearest is 111 m away");
}

TEST(TableGeocoder, DistancesAreGreatCircles) {
  EXPECT_NEAR(TableGeocoder::distance({0, 0}, {0, 0}), 0, 0);
  EXPECT_NEAR(TableGeocoder::distance({0, 0}, {0, 90}), 10007557.2, 0.1);
  EXPECT_NEAR(TableGeocoder::distance({90, 0}, {-90, 0}), 20015114.4, 0.1);
  EXPECT_NEAR(TableGeocoder::distance({0, 0}, {0, 180}), 20015114.4, 0.1);
  EXPECT_NEAR(TableGeocoder::distance({52.52, 13.405}, {48.137, 11.575}), 504323.5, 1000);
}

TEST(TableGeocoder, RequestGoesOnWhenTheGeocoderIsGone) {
  std::optional<Placemarks> found;
  test::Gate gone;
  test::Gate answered;
  auto geocoder = std::make_unique<TableGeocoder>(cities());
  geocoder->reverseGeocodeLocation(Location{}, [&](const auto&, const auto&) { gone.wait(); });
  geocoder->reverseGeocodeLocation(Location{{52.52, 13.405}}, [&](const auto& placemarks, const auto&) {
    found = placemarks;
    answered.open();
  });

  geocoder = nullptr;
  gone.open();
  answered.wait();

  EXPECT_EQ(found, Placemarks{Placemark{.locality = "Berlin"}});
}

TEST(TableGeocoder, HandlerThatThrowsEndsItsOwnRunOnly) {
  TableGeocoder geocoder(cities());

  geocoder.reverseGeocodeLocation(Location{}, [](const auto&, const auto&) { throw std::out_of_range("none"); });

  EXPECT_EQ(ask(geocoder, Location{{52.52, 13.405}}).placemarks, Placemarks{Placemark{.locality = "Berlin"}});
}

TEST(TableGeocoder, AnEmptyHandlerIsNothingToAnswer) {
  TableGeocoder geocoder(cities());

  geocoder.reverseGeocodeLocation(Location{}, nullptr);

  EXPECT_EQ(ask(geocoder, std::nullopt).error, "there is no position to look up");
}

TEST(TableGeocoder, AnswersWhileTheCallerHoldsALockThatTheHandlerTakes) {
  TableGeocoder geocoder(cities());
  std::mutex mutex;
  test::Gate answered;

  {
    const std::lock_guard lock(mutex);
    geocoder.reverseGeocodeLocation(std::nullopt, [&](const auto&, const auto&) {
      const std::lock_guard inHandler(mutex);
      answered.open();
    });
  }

  answered.wait();
}

TEST(TableGeocoder, ATableWithAPlaceBeyondTheEarthIsRefused) {
  try {
    TableGeocoder({place(0, 0, "sound"), place(0, 181, "none")});
    FAIL() << "nothing was thrown";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(),
                 "place 1 of a table is none on Earth; latitudes are from -90 to 90 degrees, longitudes "
                 "from -180 to 180");
  }
}

TEST(TableGeocoder, ADistanceThatIsNoneIsRefused) {
  EXPECT_THROW(TableGeocoder({}, -1), std::invalid_argument);
  EXPECT_THROW(TableGeocoder({}, kNoNumber), std::invalid_argument);
}

}  // namespace
}  // namespace tavlo::host
