// The geocoder's answer: the lines it logs and the address it becomes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "tests/support/LocationPlatform.h"

namespace tavlo {
namespace {

using platform::Placemark;
using platform::Placemarks;
using test::LocationWorld;
using testing::ElementsAre;

class GeocoderAnswer : public testing::Test {
 protected:
  GeocoderAnswer() {
    TavloUtility::fetchCurrentLocation();
    static_cast<void>(world_->takeCalls());
  }

  LocationWorld world_;
};

TEST_F(GeocoderAnswer, IsLoggedAndBecomesTheAddress) {
  world_->answer(0, Placemarks{{.ISOcountryCode = "IN",
                                .country = "India",
                                .postalCode = "110001",
                                .administrativeArea = "Delhi",
                                .locality = "New Delhi",
                                .subLocality = "Connaught Place",
                                .thoroughfare = "Janpath"},
                               {.country = "Nowhere"}});

  EXPECT_THAT(
      world_->takeCalls(),
      ElementsAre("console:reverseGeocodeLocation:completionHandler: Completion Handler called!",
                  "console:placemarks=Janpath, Connaught Place, New Delhi, Delhi, 110001, India",
                  "console:Current Location", "console:placemark.ISOcountryCode =IN",
                  "console:placemark.country =India", "console:placemark.postalCode =110001",
                  "console:placemark.administrativeArea =Delhi", "console:placemark.locality =New Delhi",
                  "console:placemark.subLocality =Connaught Place", "console:placemark.subThoroughfare =Janpath",
                  R"(setUserAddress:{"state":"Delhi","locality":"Connaught Place","area":"Janpath",)"
                  R"("pin":"110001","city":"New Delhi","country":"India"})"));
}

TEST_F(GeocoderAnswer, OfALocalityAloneIsACityAlone) {
  world_->answer(0, Placemarks{{.locality = "New Delhi"}});

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("console:reverseGeocodeLocation:completionHandler: Completion Handler called!",
                          "console:placemarks=New Delhi", "console:Current Location",
                          "console:placemark.ISOcountryCode =(null)", "console:placemark.country =(null)",
                          "console:placemark.postalCode =(null)", "console:placemark.administrativeArea =(null)",
                          "console:placemark.locality =New Delhi", "console:placemark.subLocality =(null)",
                          "console:placemark.subThoroughfare =(null)", R"(setUserAddress:{"city":"New Delhi"})"));
}

TEST_F(GeocoderAnswer, WithoutAStreetHasFiveMembers) {
  world_->answer(0, Placemarks{{.country = "India",
                                .postalCode = "110001",
                                .administrativeArea = "Delhi",
                                .locality = "New Delhi",
                                .subLocality = "Connaught Place"}});

  EXPECT_EQ(world_.address(),
            R"({"state":"Delhi","locality":"Connaught Place","pin":"110001","city":"New Delhi","country":"India"})");
}

TEST_F(GeocoderAnswer, OfAnEmptyFieldIsAnEmptyMember) {
  world_->answer(0, Placemarks{{.country = ""}});

  EXPECT_EQ(world_.address(), R"({"country":""})");
}

TEST_F(GeocoderAnswer, AnErrorIsLoggedAndTheAddressStaysEmpty) {
  world_->answer(0, std::nullopt, "no route to host");

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("console:reverseGeocodeLocation:completionHandler: Completion Handler called!",
                          "console:Geocode failed with error: no route to host"));
  EXPECT_EQ(world_.address(), "");
}

TEST_F(GeocoderAnswer, AnErrorCountsBeforePlacemarks) {
  world_->answer(0, Placemarks{{.country = "India"}}, "");

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("console:reverseGeocodeLocation:completionHandler: Completion Handler called!",
                          "console:Geocode failed with error: "));
  EXPECT_EQ(world_.address(), "");
}

TEST_F(GeocoderAnswer, AnErrorAfterASuccessLeavesTheAddressEmpty) {
  world_->answer(0, Placemarks{{.country = "India"}});
  EXPECT_EQ(world_.address(), R"({"country":"India"})");

  TavloUtility::fetchCurrentLocation();
  world_->answer(1, std::nullopt, "timed out");

  EXPECT_EQ(world_.address(), "");
}

TEST_F(GeocoderAnswer, AnAbsentListIsAnEmptyObject) {
  world_->answer(0, std::nullopt);

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("console:reverseGeocodeLocation:completionHandler: Completion Handler called!",
                          "console:placemarks=(null)", "console:Current Location",
                          "console:placemark.ISOcountryCode =(null)", "console:placemark.country =(null)",
                          "console:placemark.postalCode =(null)", "console:placemark.administrativeArea =(null)",
                          "console:placemark.locality =(null)", "console:placemark.subLocality =(null)",
                          "console:placemark.subThoroughfare =(null)", "setUserAddress:{}"));
}

TEST_F(GeocoderAnswer, AnEmptyListIsOutOfRangeAndTheAddressStays) {
  EXPECT_THROW(world_->answer(0, Placemarks()), std::out_of_range);

  EXPECT_THAT(world_->takeCalls(),
              ElementsAre("console:reverseGeocodeLocation:completionHandler: Completion Handler called!"));
  EXPECT_EQ(world_.address(), "");
}

TEST_F(GeocoderAnswer, ThatComesTwiceIsStoredTwice) {
  world_->answer(0, Placemarks{{.country = "India"}});
  world_->answer(0, Placemarks{{.country = "Nepal"}});

  EXPECT_EQ(world_.address(), R"({"country":"Nepal"})");
}

// It keeps nothing of the fetch that asked for it.
TEST_F(GeocoderAnswer, GoesToThePlatformAndThePackageOfItsOwnMoment) {
  const auto asking = world_->takeCalls();
  const auto package = std::make_shared<test::RecordingPackage>();
  const auto platform = std::make_shared<test::LocationPlatform>();
  TavloPackage::install(package);
  platform::install(platform);

  world_->answer(0, Placemarks{{.country = "India"}});

  EXPECT_EQ(package->texts[PackageText::getUserAddress], R"({"country":"India"})");
  EXPECT_EQ(platform->takeCalls().size(), 10U);
  EXPECT_THAT(world_->takeCalls(), ElementsAre());
  EXPECT_EQ(world_.address(), "");
}

}  // namespace
}  // namespace tavlo
