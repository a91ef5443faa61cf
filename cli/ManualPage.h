// The manual page of the program, as its command line describes itself.
#pragma once

#include <string>

#include "cli/CommandDescription.h"

namespace tavlo::cli {

// tavlo(1), in the macros of man(7).
[[nodiscard]] std::string manualPage(const CommandDescription& program);

}  // namespace tavlo::cli
