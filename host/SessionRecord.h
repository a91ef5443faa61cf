// SessionRecord: the session package in memory, ready to install.
//
//   auto session = std::make_shared<tavlo::host::SessionRecord>();
//   session->set(tavlo::PackageText::device_model, "Phone 3");
//   tavlo::TavloPackage::install(session);
//
// Values   texts are kept as they come.
// Absent   every text until it is set, and again once it is set to std::nullopt; "" is a value. Until they
//          are set the truth value is false and both integers are 0.
// Threads  any thread, any time. Each value has a guard of its own, so that a reader never waits for the
//          writer of another value, and gets the old or the new one, whole. The two coordinates are two
//          values: a reader between their writes gets the new latitude and the old longitude.
// Throws   std::bad_alloc. A write that throws leaves the old value.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

#include "request/PackageReads.h"
#include "request/TavloPackage.h"

namespace tavlo::host {

class SessionRecord final : public TavloPackage {
 public:
  void set(PackageText text, Text value);
  [[nodiscard]] Text get(PackageText text) const;

  void setLimitAdTrackingEnabled(bool enabled) { limitAdTrackingEnabled_ = enabled; }
  void setResolution(std::int32_t resolution) { resolution_ = resolution; }
  void setPreRoll(std::int32_t preRoll) { preRoll_ = preRoll; }

#define TAVLO_OVERRIDE(name) \
  [[nodiscard]] Text name() const override { return get(PackageText::name); }
  TAVLO_PACKAGE_TEXT_READS(TAVLO_OVERRIDE)
#undef TAVLO_OVERRIDE
  [[nodiscard]] bool limitAdTrackingEnabled() const override { return limitAdTrackingEnabled_; }
  [[nodiscard]] std::int32_t resolution() const override { return resolution_; }
  [[nodiscard]] std::int32_t preRoll() const override { return preRoll_; }

  void setLatitudeAndLogitude(const Text& latitude, const Text& longitude) override;
  void setUserAddress(const Text& address) override;

 private:
  struct GuardedText {
    mutable std::mutex mutex;
    Text value;
  };

  std::array<GuardedText, kPackageTextReads.size()> texts_;
  std::atomic<bool> limitAdTrackingEnabled_ = false;
  std::atomic<std::int32_t> resolution_ = 0;
  std::atomic<std::int32_t> preRoll_ = 0;
};

}  // namespace tavlo::host
