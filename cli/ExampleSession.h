// examples/session.json, compiled in so that the demo runs from anywhere.
#pragma once

#include <string_view>

namespace tavlo::cli {

extern const std::string_view kExampleSession;

}  // namespace tavlo::cli
