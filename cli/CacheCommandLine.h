// The commands of `tavlo cache`, one row each.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "cli/CommandLine.h"

namespace tavlo::cli {

// All arguments of these commands go by their places, and are required.
struct ArgumentRow {
  const char* name = nullptr;  // nullptr: there is none
  const char* description = nullptr;
  bool mayRepeat = false;                           // the last one only
  std::vector<std::string> (*choices)() = nullptr;  // nullptr: anything
};

struct CacheCommandRow {
  const char* name = nullptr;
  const char* description = nullptr;
  const char* footer = nullptr;
  std::array<ArgumentRow, 2> arguments;
  // Of the words in their order. Throws UsageError.
  Command (*make)(const std::vector<std::string>& words) = nullptr;
};

[[nodiscard]] std::span<const CacheCommandRow> cacheCommands();

}  // namespace tavlo::cli
