// The wire contracts as data: one table a request, one row a pair, in the order in which they are sent.
//
//   for (const Contract& contract : kContracts) { ... contract.pairs ... }
//
// The irregular rows (values that skip the encoder, keys unlike their source, fixed values) are the contract.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "TavloUtility.h"
#include "request/PackageReads.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo {

inline constexpr std::string_view kSdkVersion = "4.1.0";

// Where a pair's value comes from.
struct Constant {
  std::string_view text;
};
struct PackageFlag {
  std::string_view name;
  bool (TavloPackage::*read)() const;
};
struct PackageInteger {
  std::string_view name;
  std::int32_t (TavloPackage::*read)() const;
};
struct TextOperation {
  std::string_view name;
  Text (*call)();
};
struct ListOperation {
  std::string_view name;
  Value (*call)();
};
// What a class operation of the unique-user handler asks the installed one. The name is the operation's.
struct UserText {
  std::string_view name;
  Text (TavloUniqueUserHandler::*read)() const;
};
struct UserInteger {
  std::string_view name;
  std::int32_t (TavloUniqueUserHandler::*read)() const;
};
using Source = std::variant<Constant, PackageText, PackageFlag, PackageInteger, TextOperation, ListOperation, UserText,
                            UserInteger>;

// How it is written: through urlEncode, unchanged, a fixed text, "1" or "0", signed decimal, a list of maps.
enum class Rendering : std::uint8_t { encoded, asIs, constant, boolean, integer, list };

// A key between "&" and "=", as most pairs of a query begin. It lies in a room of a fixed size, so that it is copied
// without a loop.
struct QueryKey {
  static constexpr std::size_t kRoom = 31;

  constexpr explicit QueryKey(std::string_view key) {
    text[length++] = '&';
    for (const char c : key) text[length++] = c;  // one that is too long is no constant expression
    text[length++] = '=';
  }

  std::array<char, kRoom> text{};
  std::uint8_t length = 0;
};

struct Pair {
  std::string_view key;
  Source source;
  Rendering rendering;
  QueryKey queryKey{key};
};

// How the pairs travel: joined by "&", each led by "&", or as the entries of a map.
enum class Form : std::uint8_t { joined, appended, map };

struct Contract {
  std::string_view name;   // as the program calls it
  std::string_view title;  // for people
  std::string_view operation;
  Form form;
  std::span<const Pair> pairs;
};

// The tracker records as the list that the payload carries (request/TrackerRecords.cpp).
[[nodiscard]] Value networkEventCounts();

namespace contract_rows {

using enum PackageText;

consteval Pair encoded(std::string_view key, PackageText source) { return {key, source, Rendering::encoded}; }
consteval Pair encoded(std::string_view key, TextOperation source) { return {key, source, Rendering::encoded}; }
consteval Pair asIs(std::string_view key, PackageText source) { return {key, source, Rendering::asIs}; }
consteval Pair asIs(std::string_view key, UserText source) { return {key, source, Rendering::asIs}; }
consteval Pair constant(std::string_view key, std::string_view text) {
  return {key, Constant{text}, Rendering::constant};
}
consteval Pair boolean(std::string_view key, PackageFlag source) { return {key, source, Rendering::boolean}; }
consteval Pair integer(std::string_view key, PackageInteger source) { return {key, source, Rendering::integer}; }
consteval Pair integer(std::string_view key, UserInteger source) { return {key, source, Rendering::integer}; }
consteval Pair list(std::string_view key, ListOperation source) { return {key, source, Rendering::list}; }

inline constexpr PackageFlag limitAdTrackingEnabled{"limitAdTrackingEnabled", &TavloPackage::limitAdTrackingEnabled};
inline constexpr PackageInteger resolution{"resolution", &TavloPackage::resolution};
inline constexpr PackageInteger preRoll{"preRoll", &TavloPackage::preRoll};

inline constexpr TextOperation storedAppId{"getAppIdFromUserDefault", &TavloUtility::getAppIdFromUserDefault};
inline constexpr TextOperation storedOptionalId{"getOptionalIdFromUserDefault",
                                                &TavloUtility::getOptionalIdFromUserDefault};

using Users = TavloUniqueUserHandler;
inline constexpr UserInteger isUserNew{"getIsUserNew", &Users::isUserNew};
inline constexpr UserInteger dayValue{"getUniqueUserDayValue", &Users::uniqueUserDayValue};
inline constexpr UserText day{"getUniqueUserDay", &Users::uniqueUserDay};
inline constexpr UserInteger weekValue{"getUniqueUserWeekValue", &Users::uniqueUserWeekValue};
inline constexpr UserInteger week{"getNumberOfWeek", &Users::numberOfWeek};
inline constexpr UserInteger monthValue{"getUniqueUserMonthValue", &Users::uniqueUserMonthValue};
inline constexpr UserInteger month{"getNumberOfMonth", &Users::numberOfMonth};

inline constexpr ListOperation trackerRecords{"getNetworkTrackerDetails", &networkEventCounts};

inline constexpr auto kAdRequest = std::to_array<Pair>({
    encoded("appId", applicationId),
    encoded("os_version", os_version),
    asIs("app_version", app_version),
    asIs("device_id", device_id),
    asIs("timestamp", timestamp),
    encoded("app_bundle_name", app_bundle_name),
    constant("sdk_version", kSdkVersion),
    encoded("token", token),
    encoded("advertisingID", advertisingID),
    boolean("limitedTracking", limitAdTrackingEnabled),
    encoded("mac_address", mac_address),
    encoded("device_type", device_type),
    encoded("mobile_no", mobile_no),
    encoded("email_address", email_address),
    encoded("connection_type", connection_type),
    asIs("screen_density_x", screen_density_x),
    asIs("screen_density_y", screen_density_y),
    asIs("screen_height", screen_height),
    asIs("carrier_name", carrier_name),
    encoded("screen_density_category", screen_density_category),
    encoded("device_model", device_model),
    encoded("language", language),
    encoded("maturity_rating", maturity_rating),
    encoded("asset_value", asset_value),
    encoded("opt_userid", thirdPartyUserId),
    encoded("source", source),
    encoded("name", name),
    encoded("age", age),
    encoded("sex", sex),
    encoded("location", location),
    encoded("marital_status", maritalStatus),
    encoded("birthday", birthday),
    encoded("facebook_id", facebook_id),
    encoded("twitter_handle", twitter_handle),
    encoded("education", education),
    encoded("nationality", nationality),
    encoded("Page", page),
    encoded("lat", getLatitude),
    encoded("long", getLongitude),
    encoded("address", getUserAddress),
    encoded("sessionId", iosID),
});

inline constexpr auto kInApp = std::to_array<Pair>({
    encoded("app_id", storedAppId),
    encoded("os_version", os_version),
    asIs("app_version", app_version),
    asIs("device_id", device_id),
    asIs("timestamp", timestamp),
    encoded("app_bundle_name", app_bundle_name),
    constant("sdk_version", kSdkVersion),
    encoded("token", token),
    encoded("advertisingID", advertisingID),
    boolean("limitedTracking", limitAdTrackingEnabled),
    encoded("device_type", device_type),
    encoded("connection_type", connection_type),
    asIs("screen_density_x", screen_density_x),
    asIs("screen_density_y", screen_density_y),
    asIs("swidth", screen_width),
    asIs("sheight", screen_height),
    asIs("carrier_name", carrier_name),
    encoded("screen_density_category", screen_density_category),
    encoded("device_model", device_model),
    encoded("language", language),
    encoded("opt_userid", storedOptionalId),
    asIs("os_id", device_id),  // a second copy, read a second time
    encoded("Page", page),
    asIs("sessionId", iosID),
});

inline constexpr auto kUser = std::to_array<Pair>({
    integer("ru", isUserNew),
    constant("ru_n", ""),
    integer("uud", dayValue),
    asIs("uud_n", day),
    integer("uuw", weekValue),
    integer("uuw_n", week),
    integer("uum", monthValue),
    integer("uum_n", month),
});

inline constexpr auto kTracker = std::to_array<Pair>({
    asIs("Key", accesskey),
    integer("resolution", resolution),
    integer("preroll", preRoll),
    constant("offerids", "0"),
    encoded("appId", applicationId),
    encoded("os_version", os_version),
    encoded("app_version", app_version),
    encoded("device_id", device_id),
    encoded("Page", page),
    encoded("token", token),
    encoded("timestamp", timestamp),
    encoded("app_bundle_name", app_bundle_name),
    constant("sdk_version", kSdkVersion),
    encoded("advertisingID", advertisingID),
    boolean("limitedTracking", limitAdTrackingEnabled),
    encoded("device_type", device_type),
    encoded("connection_type", connection_type),
    encoded("screen_density_x", screen_density_x),
    encoded("screen_density_y", screen_density_y),
    constant("swidth", "720"),
    asIs("sheight", screen_height),
    encoded("screen_density_category", screen_density_category),
    encoded("carrier_name", carrier_name),
    encoded("device_model", device_model),
    encoded("language", language),
    integer("ru", isUserNew),
    integer("uud", dayValue),
    asIs("uud_n", day),
    integer("uuw", weekValue),
    integer("uuw_n", week),
    integer("uum", monthValue),
    integer("uum_n", month),
    constant("user_id", "1234"),
    constant("track_id", "2423432432"),
    list("network_event_count", trackerRecords),
});

constexpr auto count(std::span<const Pair> pairs, Rendering rendering) {
  return std::count_if(pairs.begin(), pairs.end(), [=](const Pair& pair) { return pair.rendering == rendering; });
}

static_assert(kAdRequest.size() == 41 && count(kAdRequest, Rendering::encoded) == 32 &&
              count(kAdRequest, Rendering::asIs) == 7 && count(kAdRequest, Rendering::constant) == 1 &&
              count(kAdRequest, Rendering::boolean) == 1);
static_assert(kInApp.size() == 24 && count(kInApp, Rendering::encoded) == 12 && count(kInApp, Rendering::asIs) == 10 &&
              count(kInApp, Rendering::constant) == 1 && count(kInApp, Rendering::boolean) == 1);
static_assert(kUser.size() == 8 && count(kUser, Rendering::integer) == 6 && count(kUser, Rendering::asIs) == 1 &&
              count(kUser, Rendering::constant) == 1);
static_assert(kTracker.size() == 35 && count(kTracker, Rendering::encoded) == 17 &&
              count(kTracker, Rendering::asIs) == 3 && count(kTracker, Rendering::constant) == 5 &&
              count(kTracker, Rendering::boolean) == 1 && count(kTracker, Rendering::integer) == 8 &&
              count(kTracker, Rendering::list) == 1);

}  // namespace contract_rows

inline constexpr Contract kAdRequestContract{"ad", "Ad request", "getAdditionalRequestingString", Form::joined,
                                             contract_rows::kAdRequest};
inline constexpr Contract kInAppContract{"in-app", "In-app notification request",
                                         "getInAppNotificationAdditionalRequest", Form::joined, contract_rows::kInApp};
inline constexpr Contract kUserContract{"user", "Unique-user fragment", "getUserInfoRequestString", Form::appended,
                                        contract_rows::kUser};
inline constexpr Contract kTrackerContract{"tracker", "Tracker payload", "trackerNetworkSessionData", Form::map,
                                           contract_rows::kTracker};

inline constexpr auto kContracts =
    std::to_array<Contract>({kAdRequestContract, kInAppContract, kUserContract, kTrackerContract});

}  // namespace tavlo
