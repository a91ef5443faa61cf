// Which kind of data, as a privacy manifest calls them, each source of the wire contracts is. PrivacyInfo.xcprivacy
// declares these kinds, all linked to the person and used for tracking, as the requests carry the advertising identity.
//
// Absent   "" for what says nothing about a person: the app's own facts and secrets, and constants.
#pragma once

#include <array>
#include <string_view>

namespace tavlo::objc {

struct PrivacyKind {
  std::string_view source;  // as the contract's table calls it
  std::string_view type;    // behind "NSPrivacyCollectedDataType"
};

inline constexpr auto kPrivacyKinds = std::to_array<PrivacyKind>({
    {"accesskey", ""},
    {"advertisingID", "DeviceID"},
    {"age", "OtherDataTypes"},
    {"app_bundle_name", ""},
    {"app_version", ""},
    {"applicationId", ""},
    {"asset_value", ""},
    {"birthday", "OtherDataTypes"},
    {"carrier_name", "OtherDataTypes"},
    {"connection_type", "OtherDataTypes"},
    {"device_id", "DeviceID"},
    {"device_model", "OtherDataTypes"},
    {"device_type", "OtherDataTypes"},
    {"education", "OtherDataTypes"},
    {"email_address", "EmailAddress"},
    {"facebook_id", "UserID"},
    {"getAppIdFromUserDefault", ""},
    {"getIsUserNew", "ProductInteraction"},
    {"getLatitude", "PreciseLocation"},
    {"getLongitude", "PreciseLocation"},
    {"getNetworkTrackerDetails", "AdvertisingData"},
    {"getNumberOfMonth", "ProductInteraction"},
    {"getNumberOfWeek", "ProductInteraction"},
    {"getOptionalIdFromUserDefault", "UserID"},
    {"getUniqueUserDay", "ProductInteraction"},
    {"getUniqueUserDayValue", "ProductInteraction"},
    {"getUniqueUserMonthValue", "ProductInteraction"},
    {"getUniqueUserWeekValue", "ProductInteraction"},
    {"getUserAddress", "PhysicalAddress"},
    {"iosID", "DeviceID"},
    {"language", "OtherDataTypes"},
    {"limitAdTrackingEnabled", "OtherDataTypes"},
    {"location", "CoarseLocation"},
    {"mac_address", "DeviceID"},
    {"maritalStatus", "OtherDataTypes"},
    {"maturity_rating", ""},
    {"mobile_no", "PhoneNumber"},
    {"name", "Name"},
    {"nationality", "OtherDataTypes"},
    {"os_version", "OtherDataTypes"},
    {"page", "ProductInteraction"},
    {"preRoll", ""},
    {"resolution", "OtherDataTypes"},
    {"screen_density_category", "OtherDataTypes"},
    {"screen_density_x", "OtherDataTypes"},
    {"screen_density_y", "OtherDataTypes"},
    {"screen_height", "OtherDataTypes"},
    {"screen_width", "OtherDataTypes"},
    {"sex", "OtherDataTypes"},
    {"source", ""},
    {"thirdPartyUserId", "UserID"},
    {"timestamp", "ProductInteraction"},
    {"token", "DeviceID"},
    {"twitter_handle", "UserID"},
});

}  // namespace tavlo::objc
