// The commands of `tavlo cache`, one row each.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "cli/CommandLine.h"

namespace tavlo::cli {

// All arguments of these commands go by their places, and are required.
struct ArgumentRow {
  const char* name;
  const char* description;
  bool mayRepeat = false;  // the last one only
};

struct CacheCommandRow {
  const char* name;
  const char* description;
  const char* footer;
  std::vector<ArgumentRow> arguments;
  // Of the words in their order. Throws UsageError.
  Command (*make)(const std::vector<std::string>& words);
};

[[nodiscard]] std::span<const CacheCommandRow> cacheCommands();

}  // namespace tavlo::cli
