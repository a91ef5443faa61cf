#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo {
namespace {

using test::Installed;
using test::InstalledPlatform;
using test::RecordingPackage;
using test::RecordingPlatform;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kAllAbsent =
    "app_id=(null)&os_version=(null)&app_version=(null)&device_id=(null)&timestamp=(null)&app_bundle_name=(null)"
    "&sdk_version=4.1.0&token=(null)&advertisingID=(null)&limitedTracking=0&device_type=(null)"
    "&connection_type=(null)&screen_density_x=(null)&screen_density_y=(null)&swidth=(null)&sheight=(null)"
    "&carrier_name=(null)&screen_density_category=(null)&device_model=(null)&language=(null)&opt_userid=(null)"
    "&os_id=(null)&Page=(null)&sessionId=(null)";

class InAppRequest : public testing::Test {
 protected:
  static std::string request() { return TavloUtility::getInAppNotificationAdditionalRequest(); }

  InstalledPlatform<RecordingPlatform> platform_;
  Installed<TavloPackage, RecordingPackage> package_;
};

TEST_F(InAppRequest, IsThe443CharactersWhenEverythingIsAbsent) {
  EXPECT_EQ(request(), kAllAbsent);
  EXPECT_EQ(request().size(), 443U);
}

TEST_F(InAppRequest, IsTheSameWithNoPackageAndNoPlatform) {
  TavloPackage::install(nullptr);
  platform::install(nullptr);

  EXPECT_EQ(request(), kAllAbsent);
}

TEST_F(InAppRequest, SendsEachValueUnderItsKeyEncodedOrAsIs) {
  package_->fillWithNames();
  package_->limitedTracking = true;
  TavloUtility::setAppIdToUserDefault(" stored app");
  TavloUtility::setOptionalIdToUserDefault(" stored user");

  EXPECT_EQ(request(),
            "app_id=%20stored%20app&os_version=%20os_version&app_version= app_version&device_id= device_id"
            "&timestamp= timestamp&app_bundle_name=%20app_bundle_name&sdk_version=4.1.0&token=%20token"
            "&advertisingID=%20advertisingID&limitedTracking=1&device_type=%20device_type"
            "&connection_type=%20connection_type&screen_density_x= screen_density_x"
            "&screen_density_y= screen_density_y&swidth= screen_width&sheight= screen_height"
            "&carrier_name= carrier_name&screen_density_category=%20screen_density_category"
            "&device_model=%20device_model&language=%20language&opt_userid=%20stored%20user"
            "&os_id= device_id&Page=%20page&sessionId= iosID");
}

TEST_F(InAppRequest, ReadsPackageAndStoreInTheOrderOfThePairs) {
  std::vector<std::string> order;
  package_->onRead = [&](std::string_view read) {
    for (const std::string& call : platform_->calls()) order.push_back(call);
    platform_->forget();
    order.emplace_back(read);
  };

  static_cast<void>(request());

  EXPECT_THAT(order, testing::ElementsAreArray({"standardUserDefaults",
                                                "objectForKey:\"ApplicationId\"",
                                                "os_version",
                                                "app_version",
                                                "device_id",
                                                "timestamp",
                                                "app_bundle_name",
                                                "token",
                                                "advertisingID",
                                                "limitAdTrackingEnabled",
                                                "device_type",
                                                "connection_type",
                                                "screen_density_x",
                                                "screen_density_y",
                                                "screen_width",
                                                "screen_height",
                                                "carrier_name",
                                                "screen_density_category",
                                                "device_model",
                                                "language",
                                                "standardUserDefaults",
                                                "objectForKey:\"OptionalId\"",
                                                "device_id",
                                                "page",
                                                "iosID"}));
  EXPECT_THAT(platform_->calls(), testing::IsEmpty());
}

TEST_F(InAppRequest, TakesThePackageOnceBeforeAnythingElse) {
  // A settings store that takes the package away when it is asked for the app id.
  class Removing final : public platform::Platform, private platform::UserDefaults {
   public:
    platform::UserDefaults& standardUserDefaults() override { return *this; }

   private:
    std::optional<Value> objectForKey(std::string_view) override {
      TavloPackage::install(nullptr);
      return std::nullopt;
    }
    void setObjectForKey(const Value&, std::string_view) override {}
    bool synchronize() override { return true; }
  };
  platform::install(std::make_shared<Removing>());
  package_->texts[PackageText::iosID] = "first";

  EXPECT_THAT(request(), testing::EndsWith("&sessionId=first"));
}

TEST_F(InAppRequest, ReadsTheDeviceIdTwice) {
  package_->texts[PackageText::device_id] = "before";
  package_->onRead = [this](std::string_view read) {
    if (read == "language") package_->texts[PackageText::device_id] = "after";
  };

  const std::string query = request();

  EXPECT_THAT(query, HasSubstr("&device_id=before&"));
  EXPECT_THAT(query, HasSubstr("&os_id=after&"));
}

TEST_F(InAppRequest, TakesTheIdsFromTheStoreAndNotFromThePackage) {
  package_->texts[PackageText::applicationId] = "package app";
  package_->texts[PackageText::thirdPartyUserId] = "package user";

  const std::string query = request();

  EXPECT_THAT(query, testing::StartsWith("app_id=(null)&"));
  EXPECT_THAT(query, HasSubstr("&opt_userid=(null)&"));
}

TEST_F(InAppRequest, LeavesTheSessionIdUnchanged) {
  package_->texts[PackageText::iosID] = "a&b=c d";

  EXPECT_THAT(request(), testing::EndsWith("&sessionId=a&b=c d"));
}

TEST_F(InAppRequest, TellsAnEmptyValueFromAnAbsentOne) {
  package_->texts[PackageText::page] = "";

  EXPECT_THAT(request(), testing::EndsWith("&os_id=(null)&Page=&sessionId=(null)"));
}

TEST_F(InAppRequest, NeverSendsWhatBelongsToOtherRequests) {
  package_->fillWithNames();

  const std::string query = "&" + request();

  for (const char* key : {"mac_address", "mobile_no",      "email_address",  "maturity_rating",
                          "asset_value", "source",         "name",           "age",
                          "sex",         "location",       "marital_status", "birthday",
                          "facebook_id", "twitter_handle", "education",      "nationality",
                          "lat",         "long",           "address",        "Key",
                          "resolution",  "preroll",        "appId",          "screen_height"}) {
    EXPECT_THAT(query, Not(HasSubstr("&" + std::string(key) + "="))) << key;
  }
}

}  // namespace
}  // namespace tavlo
