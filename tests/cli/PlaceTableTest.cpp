#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cli/Errors.h"
#include "cli/PlaceTable.h"
#include "tests/support/CaseName.h"

namespace tavlo::cli {
namespace {

using platform::Coordinate;
using platform::Placemark;

TEST(PlaceTable, EveryFieldIsReadUnderItsName) {
  const PlaceTable table = parsePlaceTable(
      R"({"about": ["any", "thing"], "within": 1500.5, "places": [
        {"longitude": 13, "latitude": -52.5, "ISOcountryCode": "a", "country": "b", "postalCode": "c",
         "administrativeArea": "d", "locality": "e", "subLocality": "f", "thoroughfare": "g"},
        {"longitude": -180, "latitude": 90, "country": null, "locality": ""}]})",
      "t.json");

  ASSERT_EQ(table.places.size(), 2U);
  EXPECT_EQ(table.within, 1500.5);
  EXPECT_EQ(table.places[0].coordinate, (Coordinate{.latitude = -52.5, .longitude = 13}));
  EXPECT_EQ(table.places[0].placemark, (Placemark{"a", "b", "c", "d", "e", "f", "g"}));
  EXPECT_EQ(table.places[1].coordinate, (Coordinate{.latitude = 90, .longitude = -180}));
  EXPECT_EQ(table.places[1].placemark, Placemark{.locality = ""});
}

TEST(PlaceTable, DistanceIsTheUsualOneWhenNoneIsGiven) {
  EXPECT_EQ(parsePlaceTable(R"({"places": []})", "t.json").within, 25000);
  EXPECT_EQ(parsePlaceTable(R"({"within": null, "places": []})", "t.json").within, 25000);
}

struct WrongTable {
  const char* name;
  const char* document;
  const char* message;  // after the file's name
};

void PrintTo(const WrongTable& row, std::ostream* stream) { *stream << row.name; }

class PlaceTableErrors : public testing::TestWithParam<WrongTable> {};

TEST_P(PlaceTableErrors, NameFileLineKeyAndWhatWasExpected) {
  try {
    static_cast<void>(parsePlaceTable(GetParam().document, "t.json"));
    FAIL() << "the table was taken";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.what(), std::string("t.json:") + GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Tables, PlaceTableErrors,
    testing::Values(
        WrongTable{"List", "[]", "1: expected an object, got a list"},
        WrongTable{"NoPlaces", "\n{}", "2: \"places\" is missing, expected a list of places"},
        WrongTable{"PlacesAreAnObject", R"({"places": {}})", "1: places: expected a list of places, got an object"},
        WrongTable{"UnknownKey", "{\n\"place\": []}", "2: place: unknown key, expected places, within or about"},
        WrongTable{"NegativeDistance", R"({"within": -1, "places": []})",
                   "1: within: expected a number of metres, 0 or more, got -1"},
        WrongTable{"DistanceIsAText", R"({"within": "1 km"})",
                   "1: within: expected a number of metres, 0 or more, got a text"},
        WrongTable{"PlaceIsAText", R"({"places": ["x"]})", "1: places[0]: expected an object, got a text"},
        WrongTable{"NoLatitude", "{\"places\": [\n{\"longitude\": 1}]}", "2: places[0]: \"latitude\" is missing"},
        WrongTable{"NoLongitude", R"({"places": [{"latitude": 1}]})", "1: places[0]: \"longitude\" is missing"},
        WrongTable{"LatitudeIsAText", R"({"places": [{"latitude": "1"}]})",
                   "1: places[0].latitude: expected a number from -90 to 90, got a text"},
        WrongTable{"LatitudeBeyondThePole", R"({"places": [{"latitude": 90.5}]})",
                   "1: places[0].latitude: expected a number from -90 to 90, got 90.5"},
        WrongTable{"LongitudeIsHuge", R"({"places": [{"longitude": -18446744073709551616}]})",
                   "1: places[0].longitude: expected a number from -180 to 180, got -18446744073709551616"},
        WrongTable{"FieldIsANumber", R"({"places": [{"postalCode": 10178}]})",
                   "1: places[0].postalCode: expected a text or null, got an integer"},
        WrongTable{"UnknownField", R"({"places": [{"city": "Berlin"}]})",
                   "1: places[0].city: unknown key, expected latitude, longitude or a field of a placemark"},
        WrongTable{"Twice", "{\"places\": [],\n\"places\": []}", "2: places: expected once, first given in line 1"}),
    test::kCaseName);

}  // namespace
}  // namespace tavlo::cli
