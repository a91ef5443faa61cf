// What kind of personal data each source of the wire contracts is.
#pragma once

#include <array>
#include <string_view>

#include "request/Contracts.h"

namespace tavlo::cli {

struct PersonalData {
  std::string_view kind;
  std::string_view explanation;
};

inline constexpr auto kPersonalData = std::to_array<PersonalData>({
    {"identifier", "tells one person, device or session from all others"},
    {"contact", "reaches a person"},
    {"profile", "what a person is, or said of themselves"},
    {"position", "where the device is"},
    {"choice", "what the person decided on being tracked"},
    {"device", "what the device, its screen and its network are; much of it together can tell a device from others"},
    {"app", "what the app is, and what it asks for"},
    {"credential", "a secret of the app's"},
    {"usage", "what was done, when and how often"},
    {"none", "the same for everybody"},
});

// One of the kinds above. A text of the session package that nobody has given a kind does not compile.
[[nodiscard]] std::string_view personalDataKind(const Source& source);

}  // namespace tavlo::cli
