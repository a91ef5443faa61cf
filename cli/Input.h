// Input: files and standard input. Everything here throws Failure, which names what could not be read and why.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace tavlo::cli {

// How a path is called in messages: "-" is standard input.
[[nodiscard]] std::string inputName(const std::string& path);

// All bytes of a file of at most `longest` bytes.
[[nodiscard]] std::string readInput(const std::string& path, std::size_t longest);

// Each line of standard input without its line feed, as soon as it is there; the last one needs none.
void forEachInputLine(const std::function<void(const std::string&)>& take);

}  // namespace tavlo::cli
