#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "TavloUtility.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

using test::Installed;
using test::RecordingPackage;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kAllAbsent =
    "appId=(null)&os_version=(null)&app_version=(null)&device_id=(null)&timestamp=(null)&app_bundle_name=(null)"
    "&sdk_version=4.1.0&token=(null)&advertisingID=(null)&limitedTracking=0&mac_address=(null)&device_type=(null)"
    "&mobile_no=(null)&email_address=(null)&connection_type=(null)&screen_density_x=(null)&screen_density_y=(null)"
    "&screen_height=(null)&carrier_name=(null)&screen_density_category=(null)&device_model=(null)&language=(null)"
    "&maturity_rating=(null)&asset_value=(null)&opt_userid=(null)&source=(null)&name=(null)&age=(null)&sex=(null)"
    "&location=(null)&marital_status=(null)&birthday=(null)&facebook_id=(null)&twitter_handle=(null)"
    "&education=(null)&nationality=(null)&Page=(null)&lat=(null)&long=(null)&address=(null)&sessionId=(null)";

class AdRequest : public testing::Test {
 protected:
  static std::string request() { return TavloUtility::getAdditionalRequestingString(); }

  Installed<TavloPackage, RecordingPackage> package_;
};

TEST_F(AdRequest, IsThe737CharactersWhenEverythingIsAbsent) {
  EXPECT_EQ(request(), kAllAbsent);
  EXPECT_EQ(request().size(), 737U);
}

TEST_F(AdRequest, IsTheSameWithNoPackageAtAll) {
  TavloPackage::install(nullptr);

  EXPECT_EQ(request(), kAllAbsent);
}

TEST_F(AdRequest, IgnoresItsArgument) {
  package_->fillWithNames();
  const int anything = 7;

  EXPECT_EQ(TavloUtility::getAdditionalRequestingString(&anything),
            TavloUtility::getAdditionalRequestingString(nullptr));
}

TEST_F(AdRequest, SendsEachValueUnderItsKeyEncodedOrAsIs) {
  package_->fillWithNames();
  package_->limitedTracking = true;

  EXPECT_EQ(request(),
            "appId=%20applicationId&os_version=%20os_version&app_version= app_version&device_id= device_id"
            "&timestamp= timestamp&app_bundle_name=%20app_bundle_name&sdk_version=4.1.0&token=%20token"
            "&advertisingID=%20advertisingID&limitedTracking=1&mac_address=%20mac_address"
            "&device_type=%20device_type&mobile_no=%20mobile_no&email_address=%20email_address"
            "&connection_type=%20connection_type&screen_density_x= screen_density_x"
            "&screen_density_y= screen_density_y&screen_height= screen_height&carrier_name= carrier_name"
            "&screen_density_category=%20screen_density_category&device_model=%20device_model"
            "&language=%20language&maturity_rating=%20maturity_rating&asset_value=%20asset_value"
            "&opt_userid=%20thirdPartyUserId&source=%20source&name=%20name&age=%20age&sex=%20sex"
            "&location=%20location&marital_status=%20maritalStatus&birthday=%20birthday"
            "&facebook_id=%20facebook_id&twitter_handle=%20twitter_handle&education=%20education"
            "&nationality=%20nationality&Page=%20page&lat=%20getLatitude&long=%20getLongitude"
            "&address=%20getUserAddress&sessionId=%20iosID");
}

TEST_F(AdRequest, ReadsEachSourceOnceInTheOrderOfThePairs) {
  static_cast<void>(request());

  EXPECT_THAT(package_->reads, testing::ElementsAreArray({"applicationId",
                                                          "os_version",
                                                          "app_version",
                                                          "device_id",
                                                          "timestamp",
                                                          "app_bundle_name",
                                                          "token",
                                                          "advertisingID",
                                                          "limitAdTrackingEnabled",
                                                          "mac_address",
                                                          "device_type",
                                                          "mobile_no",
                                                          "email_address",
                                                          "connection_type",
                                                          "screen_density_x",
                                                          "screen_density_y",
                                                          "screen_height",
                                                          "carrier_name",
                                                          "screen_density_category",
                                                          "device_model",
                                                          "language",
                                                          "maturity_rating",
                                                          "asset_value",
                                                          "thirdPartyUserId",
                                                          "source",
                                                          "name",
                                                          "age",
                                                          "sex",
                                                          "location",
                                                          "maritalStatus",
                                                          "birthday",
                                                          "facebook_id",
                                                          "twitter_handle",
                                                          "education",
                                                          "nationality",
                                                          "page",
                                                          "getLatitude",
                                                          "getLongitude",
                                                          "getUserAddress",
                                                          "iosID"}));
}

TEST_F(AdRequest, TakesThePackageOnceAndKeepsToIt) {
  package_->texts[PackageText::iosID] = "first";
  package_->onRead = [](std::string_view) { TavloPackage::install(nullptr); };

  EXPECT_THAT(request(), testing::EndsWith("&sessionId=first"));
}

TEST_F(AdRequest, AWriterBetweenTwoReadsLandsBetweenTwoPairs) {
  package_->texts[PackageText::applicationId] = "old";
  package_->texts[PackageText::getUserAddress] = "old";
  package_->onRead = [this](std::string_view read) {
    if (read != "getLongitude") return;
    package_->texts[PackageText::applicationId] = "new";
    package_->texts[PackageText::getUserAddress] = "new";
  };

  const std::string query = request();

  EXPECT_THAT(query, testing::StartsWith("appId=old&"));
  EXPECT_THAT(query, HasSubstr("&address=new&"));
}

TEST_F(AdRequest, TellsAnEmptyValueFromAnAbsentOne) {
  package_->texts[PackageText::token] = "";
  package_->texts[PackageText::carrier_name] = "";
  package_->texts[PackageText::iosID] = "";

  const std::string query = request();

  EXPECT_THAT(query, HasSubstr("&token=&advertisingID=(null)&"));
  EXPECT_THAT(query, HasSubstr("&carrier_name=&screen_density_category=(null)&"));
  EXPECT_THAT(query, testing::EndsWith("&sessionId="));
}

TEST_F(AdRequest, LetsAsIsValuesBreakTheQueryAndEncodedOnesNot) {
  package_->texts[PackageText::carrier_name] = "A & B=C";
  package_->texts[PackageText::device_model] = "A & B=C";

  const std::string query = request();

  EXPECT_THAT(query, HasSubstr("&carrier_name=A & B=C&"));
  EXPECT_THAT(query, HasSubstr("&device_model=A%20%26%20B%3DC&"));
  EXPECT_EQ(std::count(query.begin(), query.end(), '&'), 41);
}

TEST_F(AdRequest, SendsTheTextNullOfAPresentValueEncoded) {
  package_->texts[PackageText::name] = "(null)";

  EXPECT_THAT(request(), HasSubstr("&name=%28null%29&age=(null)&"));
}

TEST_F(AdRequest, CarriesTheLocationAsItWasWritten) {
  EXPECT_THAT(request(), HasSubstr("&lat=(null)&long=(null)&address=(null)&"));

  TavloPackage::sharedInstance()->setLatitudeAndLogitude("28.613900", "-77.209000");
  TavloPackage::sharedInstance()->setUserAddress("");
  EXPECT_THAT(request(), HasSubstr("&lat=28.613900&long=-77.209000&address=&sessionId="));

  TavloPackage::sharedInstance()->setUserAddress(R"({"city":"K\u00f6ln"})");
  EXPECT_THAT(request(), HasSubstr("&address=%7B%22city%22%3A%22K%5Cu00f6ln%22%7D&sessionId="));
}

TEST_F(AdRequest, NeverSendsWhatBelongsToOtherRequests) {
  package_->fillWithNames();

  const std::string query = "&" + request();

  for (const char* key : {"swidth", "screen_width", "sheight", "Key", "accesskey", "resolution", "preroll", "app_id"}) {
    EXPECT_THAT(query, Not(HasSubstr("&" + std::string(key) + "="))) << key;
  }
}

}  // namespace
}  // namespace tavlo
