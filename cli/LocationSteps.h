// How a position fetch was decided, step by step, for people.
#pragma once

#include <string>
#include <vector>

#include "cli/LocationWatch.h"

namespace tavlo::cli {

struct LocationStep {
  std::string step;
  std::string what;  // one line, ready to be shown
};

// In the order in which they happened. `isFixed`: the position is one that the command line gave.
[[nodiscard]] std::vector<LocationStep> locationSteps(const LocationReport& report, bool isFixed);

// Why there is no position, and what to do. Of a report that has none.
[[nodiscard]] std::string whyNoPosition(const LocationReport& report);

// Whether the permission lets a fetch go on.
[[nodiscard]] bool isAllowed(std::int32_t status);

// "52.520000, 13.405000", or "none".
[[nodiscard]] std::string positionText(const std::optional<platform::Location>& location);

}  // namespace tavlo::cli
