#include "cli/PersonalData.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tavlo::cli {
namespace {

using enum PackageText;

// Indexed by PackageText: a text that is new there has no kind until it has one here.
constexpr auto kTextKinds = [] {
  constexpr auto kKinds = std::to_array<std::pair<PackageText, std::string_view>>({
      {applicationId, "app"},
      {os_version, "device"},
      {app_version, "app"},
      {device_id, "identifier"},
      {timestamp, "usage"},
      {app_bundle_name, "app"},
      {token, "identifier"},
      {advertisingID, "identifier"},
      {mac_address, "identifier"},
      {device_type, "device"},
      {mobile_no, "contact"},
      {email_address, "contact"},
      {connection_type, "device"},
      {screen_density_x, "device"},
      {screen_density_y, "device"},
      {screen_width, "device"},
      {screen_height, "device"},
      {carrier_name, "device"},
      {screen_density_category, "device"},
      {device_model, "device"},
      {language, "profile"},
      {maturity_rating, "app"},
      {asset_value, "app"},
      {thirdPartyUserId, "identifier"},
      {source, "app"},
      {name, "profile"},
      {age, "profile"},
      {sex, "profile"},
      {location, "profile"},
      {maritalStatus, "profile"},
      {birthday, "profile"},
      {facebook_id, "identifier"},
      {twitter_handle, "identifier"},
      {education, "profile"},
      {nationality, "profile"},
      {page, "usage"},
      {getLatitude, "position"},
      {getLongitude, "position"},
      {getUserAddress, "position"},
      {iosID, "identifier"},
      {accesskey, "credential"},
  });
  std::array<std::string_view, kPackageTextReads.size()> kinds{};
  for (const auto& [text, kind] : kKinds) kinds[static_cast<std::size_t>(text)] = kind;
  return kinds;
}();

constexpr bool isKind(std::string_view name) {
  return std::ranges::any_of(kPersonalData, [=](const PersonalData& data) { return data.kind == name; });
}
static_assert(std::ranges::all_of(kTextKinds, isKind), "every text of the session package needs a kind");

struct KindOf {
  std::string_view operator()(const Constant&) const { return "none"; }
  std::string_view operator()(PackageText text) const { return kTextKinds[static_cast<std::size_t>(text)]; }
  std::string_view operator()(const PackageFlag&) const { return "choice"; }
  std::string_view operator()(const PackageInteger& integer) const {
    return integer.name == contract_rows::resolution.name ? "device" : "app";
  }
  std::string_view operator()(const TextOperation& operation) const {
    return operation.name == contract_rows::storedAppId.name ? "app" : "identifier";
  }
  std::string_view operator()(const ListOperation&) const { return "usage"; }
  std::string_view operator()(const UserText&) const { return "usage"; }
  std::string_view operator()(const UserInteger&) const { return "usage"; }
};

}  // namespace

std::string_view personalDataKind(const Source& source) { return std::visit(KindOf(), source); }

}  // namespace tavlo::cli
