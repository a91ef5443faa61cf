#include "cli/LocationSteps.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/Display.h"
#include "common/Format.h"
#include "location/Address.h"

namespace tavlo::cli {
namespace {

struct StatusRow {
  std::int32_t status;
  std::string_view meaning;
  std::string_view remedy;  // of those that allow nothing
};

constexpr auto kStatuses = std::to_array<StatusRow>({
    {platform::kCLAuthorizationStatusNotDetermined, "nobody was asked yet", "--wait asks for it"},
    {platform::kCLAuthorizationStatusRestricted, "the system gives apps no position",
     "allow it in the desktop's privacy settings"},
    {platform::kCLAuthorizationStatusDenied, "refused to this app", "allow it in the desktop's privacy settings"},
    {platform::kCLAuthorizationStatusAuthorizedAlways, "allowed always", ""},
    {platform::kCLAuthorizationStatusAuthorizedWhenInUse, "allowed while the app is in use", ""},
});
constexpr StatusRow kNobodyAnswered{platform::kCLAuthorizationStatusNotDetermined,
                                    "nobody answered when it was asked for",
                                    "check that the position service and the agent that asks the user run"};
constexpr StatusRow kUnknownStatus{-1, "no number that is known", "check the platform"};

constexpr std::string_view kServicesRemedy = "switch location services on, or give a position with --fixed LAT,LON";

const StatusRow& rowOf(std::int32_t status, bool isAsked) {
  if (isAsked && status == kNobodyAnswered.status) return kNobodyAnswered;
  const auto isOfStatus = [status](const StatusRow& row) { return row.status == status; };
  const auto* const row = std::find_if(kStatuses.begin(), kStatuses.end(), isOfStatus);
  return row == kStatuses.end() ? kUnknownStatus : *row;
}

std::string joined(std::string_view first, std::string_view second) {
  std::string text(first);
  text += second;
  return text;
}

std::string permissionText(std::int32_t status, bool isAsked, bool isFixed) {
  const StatusRow& row = rowOf(status, isAsked);
  std::string text = std::to_string(status);
  text.append(": ").append(isFixed ? "--fixed needs no permission" : row.meaning);
  if (!isAllowed(status)) text.append("; nothing is fetched");
  return text;
}

std::string answerText(const LocationReport& report) {
  if (!report.isAnswered) return report.isOver ? "none, and none will come" : "none yet";
  if (report.error) return joined("an error, so the address stays empty: ", harmless(*report.error));
  if (!report.placemarks) return "no list, so the address is an empty object";
  if (report.placemarks->empty()) return "an empty list, which ends the handler; the address stays empty";
  const std::size_t count = report.placemarks->size();
  return count == 1 ? "one placemark" : std::to_string(count) + " placemarks, of which the first counts";
}

// Which field filled which key.
void appendMembers(std::vector<LocationStep>& steps, const platform::Placemark& placemark) {
  for (const auto& [key, fieldName, field] : kAddressMembers) {
    const Text& value = placemark.*field;
    steps.push_back({.step = joined("key ", key),
                     .what = value ? quoted(*value).append(" from ").append(fieldName)
                                   : joined(fieldName, " is not known, so the key is left out")});
  }
  if (placemark.ISOcountryCode) {
    steps.push_back(
        {.step = "no key", .what = quoted(*placemark.ISOcountryCode) + " of ISOcountryCode is only logged"});
  }
}

}  // namespace

bool isAllowed(std::int32_t status) {
  return status == platform::kCLAuthorizationStatusAuthorizedAlways ||
         status == platform::kCLAuthorizationStatusAuthorizedWhenInUse;
}

std::string positionText(const std::optional<platform::Location>& location) {
  if (!location) return "none";
  std::string text;
  appendFixed(text, location->coordinate.latitude);
  text += ", ";
  appendFixed(text, location->coordinate.longitude);
  return text;
}

std::vector<LocationStep> locationSteps(const LocationReport& report, bool isFixed) {
  std::vector<LocationStep> steps;
  steps.push_back({.step = "services", .what = report.enabled ? "on" : "off; nothing is fetched"});
  if (!report.enabled || !report.status) return steps;
  steps.push_back({.step = "permission", .what = permissionText(*report.status, report.isAsked, isFixed)});
  if (report.positions.empty()) return steps;
  const auto& position = report.positions.front();
  steps.push_back({.step = "position",
                   .what = position ? positionText(position) : "none yet, which is stored as 0.000000, 0.000000"});
  if (!report.isLookedUp) return steps;
  steps.push_back(
      {.step = "look-up", .what = joined("of the position as read again: ", positionText(report.positions.back()))});
  steps.push_back({.step = "answer", .what = answerText(report)});
  if (report.placemarks && !report.placemarks->empty()) appendMembers(steps, report.placemarks->front());
  return steps;
}

std::string whyNoPosition(const LocationReport& report) {
  if (!report.enabled) return joined("location services are off; ", kServicesRemedy);
  if (!report.status) return joined("the permission was not read; ", kServicesRemedy);
  const StatusRow& row = rowOf(*report.status, report.isAsked);
  std::string text = "the permission is " + std::to_string(*report.status);
  text.append(", ").append(row.meaning);
  if (!row.remedy.empty()) text.append("; ").append(row.remedy).append(", or give a position with --fixed LAT,LON");
  return text;
}

}  // namespace tavlo::cli
