// Programs that a race starts.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavlo::bench {

// Where a program is: in $PATH or, as for services, in /usr/sbin. Absent when it is not installed.
[[nodiscard]] std::optional<std::string> programPath(const std::string& name);

// Runs a program of $PATH to its end. Throws std::runtime_error, which names it, unless its status is 0.
void run(const std::vector<std::string>& command);

}  // namespace tavlo::bench
