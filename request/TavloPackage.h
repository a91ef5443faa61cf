// TavloPackage: the SDK's one record of what it knows about the app, the device, the user, the advertising
// identity, the location and the session. The host app brings it (host/SessionRecord.h is one ready to use)
// and installs it; the request builders read it and the location fetch writes to it.
//
// Values   texts are sent as the record holds them: ages, dimensions and coordinates are texts, not numbers.
// Absent   an absent text is sent as "(null)", an empty one as nothing. With no record installed every text
//          is absent, the truth value false and both integers 0.
// Threads  any thread, any time. Each read gives a value that was written, whole; a request is not a
//          snapshot: every value is read at the moment its own pair is written.
//
// The names are the contract's, mixed forms included.
#pragma once

#include <cstdint>
#include <memory>

#include "common/Text.h"

namespace tavlo {

class TavloPackage {
 public:
  TavloPackage() = default;
  TavloPackage(const TavloPackage&) = delete;
  TavloPackage& operator=(const TavloPackage&) = delete;
  virtual ~TavloPackage() = default;

  // The installed record, nullptr when there is none. A host installs one, once, before the first request.
  [[nodiscard]] static std::shared_ptr<TavloPackage> sharedInstance();
  static void install(std::shared_ptr<TavloPackage> package);

  // Where the installed package only knows where the record is: that record, asked for once a call of sharedInstance().
  // nullptr: the package is the record itself.
  [[nodiscard]] virtual std::shared_ptr<TavloPackage> record() { return nullptr; }

  // The app and the session
  [[nodiscard]] virtual Text applicationId() const = 0;
  [[nodiscard]] virtual Text app_version() const = 0;
  [[nodiscard]] virtual Text app_bundle_name() const = 0;
  [[nodiscard]] virtual Text token() const = 0;
  [[nodiscard]] virtual Text accesskey() const = 0;
  [[nodiscard]] virtual Text timestamp() const = 0;
  [[nodiscard]] virtual Text page() const = 0;
  [[nodiscard]] virtual Text iosID() const = 0;  // the session id
  [[nodiscard]] virtual Text source() const = 0;
  [[nodiscard]] virtual Text asset_value() const = 0;
  [[nodiscard]] virtual Text maturity_rating() const = 0;
  [[nodiscard]] virtual std::int32_t resolution() const = 0;
  [[nodiscard]] virtual std::int32_t preRoll() const = 0;  // a number, not a truth value

  // The device
  [[nodiscard]] virtual Text os_version() const = 0;
  [[nodiscard]] virtual Text device_id() const = 0;
  [[nodiscard]] virtual Text device_type() const = 0;
  [[nodiscard]] virtual Text device_model() const = 0;
  [[nodiscard]] virtual Text mac_address() const = 0;
  [[nodiscard]] virtual Text connection_type() const = 0;
  [[nodiscard]] virtual Text carrier_name() const = 0;
  [[nodiscard]] virtual Text language() const = 0;
  [[nodiscard]] virtual Text screen_density_x() const = 0;
  [[nodiscard]] virtual Text screen_density_y() const = 0;
  [[nodiscard]] virtual Text screen_density_category() const = 0;
  [[nodiscard]] virtual Text screen_width() const = 0;
  [[nodiscard]] virtual Text screen_height() const = 0;

  // The advertising identity
  [[nodiscard]] virtual Text advertisingID() const = 0;
  [[nodiscard]] virtual bool limitAdTrackingEnabled() const = 0;

  // The user's profile
  [[nodiscard]] virtual Text thirdPartyUserId() const = 0;
  [[nodiscard]] virtual Text mobile_no() const = 0;
  [[nodiscard]] virtual Text email_address() const = 0;
  [[nodiscard]] virtual Text name() const = 0;
  [[nodiscard]] virtual Text age() const = 0;
  [[nodiscard]] virtual Text sex() const = 0;
  [[nodiscard]] virtual Text location() const = 0;
  [[nodiscard]] virtual Text maritalStatus() const = 0;
  [[nodiscard]] virtual Text birthday() const = 0;
  [[nodiscard]] virtual Text facebook_id() const = 0;
  [[nodiscard]] virtual Text twitter_handle() const = 0;
  [[nodiscard]] virtual Text education() const = 0;
  [[nodiscard]] virtual Text nationality() const = 0;

  // The location, in degrees as text, and the address
  [[nodiscard]] virtual Text getLatitude() const = 0;
  [[nodiscard]] virtual Text getLongitude() const = 0;
  [[nodiscard]] virtual Text getUserAddress() const = 0;

  // "Logitude" is the operation's name.
  virtual void setLatitudeAndLogitude(const Text& latitude, const Text& longitude) = 0;
  virtual void setUserAddress(const Text& address) = 0;
};

}  // namespace tavlo
