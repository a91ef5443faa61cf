// What tavlo doctor examines, one function a check. None makes anything that stays, and none asks for permission.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cli/CommandLine.h"
#include "cli/Place.h"
#include "platform/Platform.h"

namespace tavlo::cli {

enum class Health : std::uint8_t { ok, note, broken };

struct Finding {
  Health health = Health::ok;
  std::string what;
  std::optional<std::string> remedy{};  // of all but ok
};

[[nodiscard]] inline Finding ok(std::string what) { return {.health = Health::ok, .what = std::move(what)}; }
[[nodiscard]] inline Finding note(std::string what, std::string remedy) {
  return {.health = Health::note, .what = std::move(what), .remedy = std::move(remedy)};
}
[[nodiscard]] inline Finding broken(std::string what, std::string remedy) {
  return {.health = Health::broken, .what = std::move(what), .remedy = std::move(remedy)};
}

struct Patient {
  const Place& place;
  const GeocoderChoice& geocoder;
  std::shared_ptr<platform::Platform> platform;  // of the place
};

// Files: cli/DoctorFiles.cpp.
[[nodiscard]] Finding examineContainer(const Patient& patient);
[[nodiscard]] Finding examineSettings(const Patient& patient);
[[nodiscard]] Finding examineDatabase(const Patient& patient);
[[nodiscard]] Finding examineCache(const Patient& patient);
[[nodiscard]] Finding examineLog(const Patient& patient);
[[nodiscard]] Finding examineBundle(const Patient& patient);
[[nodiscard]] Finding examineVolumeImage(const Patient& patient);
[[nodiscard]] Finding examineMuteImage(const Patient& patient);

// Services: cli/DoctorServices.cpp.
[[nodiscard]] Finding examineHttp(const Patient& patient);
[[nodiscard]] Finding examineCertificates(const Patient& patient);
[[nodiscard]] Finding examinePosition(const Patient& patient);
[[nodiscard]] Finding examineGeocoder(const Patient& patient);
[[nodiscard]] Finding examinePortal(const Patient& patient);

}  // namespace tavlo::cli
