// The read operations of TavloPackage as data: one list of their names, for everything that has to treat
// them alike (the wire contracts, a record that implements them, a loader that fills one).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "request/TavloPackage.h"

// clang-format off
#define TAVLO_PACKAGE_TEXT_READS(READ)                                                                        \
  READ(applicationId) READ(os_version) READ(app_version) READ(device_id) READ(timestamp)                      \
  READ(app_bundle_name) READ(token) READ(advertisingID) READ(mac_address) READ(device_type) READ(mobile_no)   \
  READ(email_address) READ(connection_type) READ(screen_density_x) READ(screen_density_y) READ(screen_width)  \
  READ(screen_height) READ(carrier_name) READ(screen_density_category) READ(device_model) READ(language)      \
  READ(maturity_rating) READ(asset_value) READ(thirdPartyUserId) READ(source) READ(name) READ(age) READ(sex)  \
  READ(location) READ(maritalStatus) READ(birthday) READ(facebook_id) READ(twitter_handle) READ(education)    \
  READ(nationality) READ(page) READ(getLatitude) READ(getLongitude) READ(getUserAddress) READ(iosID)          \
  READ(accesskey)
// clang-format on

namespace tavlo {

// One enumerator a text, named like the operation that reads it.
enum class PackageText : std::uint8_t {
#define TAVLO_ENUMERATOR(name) name,
  TAVLO_PACKAGE_TEXT_READS(TAVLO_ENUMERATOR)
#undef TAVLO_ENUMERATOR
};

struct PackageTextRead {
  std::string_view name;
  Text (TavloPackage::*read)() const;
};

// Indexed by PackageText.
inline constexpr auto kPackageTextReads = std::to_array<PackageTextRead>({
#define TAVLO_ROW(name) {#name, &TavloPackage::name},
    TAVLO_PACKAGE_TEXT_READS(TAVLO_ROW)
#undef TAVLO_ROW
});
static_assert(kPackageTextReads.size() == 41);

[[nodiscard]] constexpr const PackageTextRead& readOf(PackageText text) {
  return kPackageTextReads[static_cast<std::size_t>(text)];
}

// The text whose read operation has this name.
[[nodiscard]] constexpr std::optional<PackageText> packageTextNamed(std::string_view name) {
  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) {
    if (kPackageTextReads[i].name == name) return static_cast<PackageText>(i);
  }
  return std::nullopt;
}

}  // namespace tavlo
