// The platform's own geocoder against a service on loopback, from the fetch to the address in the package.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "tests/integration/DesktopFixture.h"
#include "tests/support/CaseName.h"
#include "tests/support/Nominatim.h"

namespace tavlo::test {
namespace {

using platform::Location;
using testing::ElementsAre;

class FixedManager final : public platform::LocationManager {
 public:
  explicit FixedManager(std::optional<Location> location) : location_(location) {}
  void setDistanceFilter(double) override {}
  void setDesiredAccuracy(double) override {}
  void startUpdatingLocation() override {}
  std::optional<Location> location() override { return location_; }

 private:
  const std::optional<Location> location_;
};

class FixedServices final : public platform::LocationServices {
 public:
  explicit FixedServices(std::optional<Location> location) : location_(location) {}
  bool locationServicesEnabled() override { return true; }
  std::int32_t authorizationStatus() override { return 3; }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override {
    return std::make_shared<FixedManager>(location_);
  }
  void requestAuthorization(StatusHandler) override {}
  void requestLocation(LocationHandler) override {}

 private:
  const std::optional<Location> location_;
};

// No test waits for the second between two questions.
class HastyClock final : public linux_platform::RequestPace::Clock {
 public:
  using Time = linux_platform::RequestPace::Time;

  Time now() override { return now_; }
  bool waitUntil(Time time) override { return now_ = time, true; }
  void cancel() override {}

 private:
  Time now_{};
};

[[maybe_unused]] const bool kIsHasty = (linux_platform::setGeocodingClock(std::make_unique<HastyClock>()), true);

constexpr Location kDelhi{.coordinate = {.latitude = 28.6139, .longitude = 77.209}};
constexpr const char* kCalled = "console:reverseGeocodeLocation:completionHandler: Completion Handler called!";

linux_platform::Options at(std::optional<Location> location, linux_platform::GeocodingOptions geocoding) {
  return {.locationServices = std::make_shared<FixedServices>(location), .geocoding = std::move(geocoding)};
}

TEST(GeocoderThread, APositionBecomesTheAddressInThePackage) {
  Nominatim service;
  Desktop desktop(at(kDelhi, {.url = service.url("good"), .maintainer = "a@example.org"}));

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(
      desktop.record().take(14),
      ElementsAre("console:location authorization: 3", "setLatitude:28.613900 AndLogitude:77.209000", "setUserAddress:",
                  kCalled, "console:placemarks=Rajpath, Connaught Place, New Delhi, Delhi, 110001, India",
                  "console:Current Location", "console:placemark.ISOcountryCode =IN",
                  "console:placemark.country =India", "console:placemark.postalCode =110001",
                  "console:placemark.administrativeArea =Delhi", "console:placemark.locality =New Delhi",
                  "console:placemark.subLocality =Connaught Place", "console:placemark.subThoroughfare =Rajpath",
                  "setUserAddress:{\"state\":\"Delhi\",\"locality\":\"Connaught Place\",\"area\":\"Rajpath\","
                  "\"pin\":\"110001\",\"city\":\"New Delhi\",\"country\":\"India\"}"));
  EXPECT_EQ(service.request(),
            "GET /good/reverse [TavloUtility (org.example.player)] accept-language=C&addressdetails=1&"
            "email=a%40example.org&format=json&lat=28.613900000000001&lon=77.209000000000003");
}

struct Address {
  const char* name;
  const char* behaviour;
  const char* address;
};

class GeocoderAddressThread : public testing::TestWithParam<Address> {};

TEST_P(GeocoderAddressThread, IsMadeOfWhatTheServiceKnows) {
  Nominatim service;
  Desktop desktop(at(kDelhi, {.url = service.url(GetParam().behaviour)}));

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(desktop.record().take(14).back(), std::string("setUserAddress:") + GetParam().address);
}

INSTANTIATE_TEST_SUITE_P(
    , GeocoderAddressThread,
    testing::Values(Address{"Town", "town", R"({"state":"Ladakh","city":"Leh"})"},
                    Address{"Village", "village", R"({"city":"Hunder"})"},
                    Address{"CityBeforeTownBeforeVillage", "all", R"({"city":"City","country":"Country"})"},
                    Address{"QuotesAndOtherScripts", "quoted",
                            "{\"area\":\"A \\\"b\\\" \\\\ \\/ c\",\"city\":\"Z\u00fcrich \u2028 \U0001f600\"}"},
                    Address{"AddressAlone", "bare", R"({"city":"New Delhi"})"},
                    Address{"MembersOfWrongTypes", "wrong", R"({"pin":"110001","city":"New Delhi"})"}),
    kCaseName);

struct Trouble {
  const char* name;
  const char* behaviour;
  const char* error;
};

constexpr const char* kNoAnswer =
    "the geocoding service gives no answer: it is out of reach, takes too long, sends too much, or fails";
constexpr const char* kNoObject = "the geocoding service's answer is no JSON object";
constexpr const char* kNoAddress = "the geocoding service knows no address there";

class GeocoderTroubleThread : public testing::TestWithParam<Trouble> {};

TEST_P(GeocoderTroubleThread, LeavesTheAddressEmptyWithTwoLinesOnTheConsole) {
  Nominatim service;
  Desktop desktop(at(kDelhi, {.url = service.url(GetParam().behaviour), .timeLimit = std::chrono::milliseconds(500)}));

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(
      desktop.record().take(5),
      ElementsAre("console:location authorization: 3", "setLatitude:28.613900 AndLogitude:77.209000",
                  "setUserAddress:", kCalled, std::string("console:Geocode failed with error: ") + GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(
    , GeocoderTroubleThread,
    testing::Values(Trouble{"NeverAnswers", "hold", kNoAnswer}, Trouble{"OneByteAtATime", "drip", kNoAnswer},
                    Trouble{"ServerError", "500", kNoAnswer}, Trouble{"NotFound", "404", kNoAnswer},
                    Trouble{"CutBody", "cut", kNoAnswer}, Trouble{"AboveTheLimit", "large", kNoAnswer},
                    Trouble{"Page", "nojson", kNoObject}, Trouble{"EmptyBody", "empty", kNoObject},
                    Trouble{"List", "array", kNoObject}, Trouble{"HalfAnObject", "half", kNoObject},
                    Trouble{"TwoObjects", "twice", kNoObject}, Trouble{"NotUtf8", "bytes", kNoObject},
                    Trouble{"NestedDeeply", "deep", kNoObject},
                    Trouble{"ErrorOfTheService", "unable", "Unable to geocode"},
                    Trouble{"EmptyObject", "nothing", kNoAddress}, Trouble{"EmptyMembers", "hollow", kNoAddress},
                    Trouble{"AddressIsText", "street", kNoAddress}),
    kCaseName);

// The words are the library's.
TEST(GeocoderThread, AnAnswerThatBreaksTheGrammarIsAnErrorThatTellsWhere) {
  Nominatim service;
  Desktop desktop(at(kDelhi, {.url = service.url("grammar")}));

  TavloUtility::fetchCurrentLocation();

  EXPECT_THAT(desktop.record().take(5).back(),
              testing::MatchesRegex("console:Geocode failed with error: <data>:1:.*\"road\".*"));
}

TEST(GeocoderThread, AServiceThatRefusesGivesNoAnswer) {
  Desktop desktop(at(kDelhi, {.url = "http://127.0.0.1:1"}));

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(desktop.record().take(5).back(), std::string("console:Geocode failed with error: ") + kNoAnswer);
}

TEST(GeocoderThread, WithoutAServiceAnErrorSaysWhatToSet) {
  Desktop desktop(at(kDelhi, {}));

  TavloUtility::fetchCurrentLocation();

  EXPECT_EQ(desktop.record().take(5).back(),
            "console:Geocode failed with error: no geocoding service is configured: set the option \"geocoding.url\"");
}

TEST(GeocoderThread, AnAbsentLocationIsAnErrorAndAsksNobody) {
  Nominatim service;
  Desktop desktop(at(std::nullopt, {.url = service.url("echo")}));

  TavloUtility::fetchCurrentLocation();
  const auto lines = desktop.record().take(5);
  desktop.geocoder()->reverseGeocodeLocation(Location{.coordinate = {.latitude = 0, .longitude = 0}}, nullptr);

  EXPECT_EQ(lines[1], "setLatitude:0.000000 AndLogitude:0.000000");
  EXPECT_EQ(lines[4], "console:Geocode failed with error: there is no location to look up");
  EXPECT_THAT(service.request(), testing::HasSubstr("lat=0&lon=0"));
}

TEST(GeocoderThread, APlaceThatIsNotOnEarthIsAnErrorAndTheEdgesAreNot) {
  Nominatim service;
  Desktop desktop(at(kDelhi, {.url = service.url("echo")}));
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::vector<platform::Coordinate> places{{90.5, 0},      {-91, 0},       {0, 180.5}, {0, -181},  {kNoNumber, 0},
                                                 {0, kNoNumber}, {kInfinity, 0}, {90, 180},  {-90, -180}};

  std::vector<std::string> answers;
  std::promise<void> done;
  for (const auto& place : places) {
    desktop.geocoder()->reverseGeocodeLocation(Location{place}, [&](const auto& placemarks, const Text& error) {
      answers.push_back(placemarks ? placemarks->at(0).thoroughfare.value_or("(null)") : error.value_or("(null)"));
      if (answers.size() == places.size()) done.set_value();
    });
  }
  done.get_future().wait();

  std::vector<std::string> expected(7, "the location is no place on earth");
  expected.insert(expected.end(), {"90", "-90"});
  EXPECT_EQ(answers, expected);
}

}  // namespace
}  // namespace tavlo::test
