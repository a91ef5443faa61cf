// Program: one run of `tavlo`, from its arguments to its exit code.
#pragma once

#include <span>
#include <string>

namespace tavlo::cli {

// `arguments` are those after the program's name. 0: done, 1: failed, 2: used wrongly. Throws nothing.
[[nodiscard]] int runProgram(std::span<const std::string> arguments) noexcept;

}  // namespace tavlo::cli
