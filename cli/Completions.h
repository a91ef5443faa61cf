// What shells complete of the program's command line, as it describes itself: commands, options, and of values those
// that are words to choose from, files or folders.
#pragma once

#include <string>

#include "cli/CommandDescription.h"

namespace tavlo::cli {

[[nodiscard]] std::string bashCompletion(const CommandDescription& program);
[[nodiscard]] std::string zshCompletion(const CommandDescription& program);
[[nodiscard]] std::string fishCompletion(const CommandDescription& program);

}  // namespace tavlo::cli
