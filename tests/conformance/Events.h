// What a world saw since the last time, in order.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/Value.h"

namespace tavlo::conformance {

struct Events {
  std::vector<std::string> log;
  std::vector<std::string> console;
  std::vector<std::string> reports;
  std::vector<std::string> asks;
  ValueList menus;
};

// Shared by all that may outlive the world.
using Seen = std::shared_ptr<Events>;

}  // namespace tavlo::conformance
