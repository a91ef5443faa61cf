// The commands for position, images, log and services: locate, image, log ..., doctor; one row each.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cli/CacheCommandLine.h"
#include "cli/CommandLine.h"

namespace tavlo::cli {

struct OptionRow {
  const char* name = nullptr;  // nullptr: there is none
  const char* type = nullptr;  // of its value; nullptr: a flag
  const char* description = nullptr;
};

// What the command line has for a row.
struct Given {
  std::string word;                                         // of the argument
  std::map<std::string, std::string, std::less<>> options;  // by their names; "" for a flag

  [[nodiscard]] bool has(std::string_view option) const { return options.contains(option); }
  [[nodiscard]] std::optional<std::string> text(std::string_view option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::nullopt : std::optional(found->second);
  }
};

struct ServiceCommandRow {
  const char* group = nullptr;  // the command that it is a part of; nullptr: it is one itself
  const char* name = nullptr;
  const char* description = nullptr;
  const char* footer = nullptr;
  ArgumentRow argument{};
  std::array<OptionRow, 8> options{};
  Command (*make)(const Given& given) = nullptr;  // throws UsageError
};

[[nodiscard]] std::span<const ServiceCommandRow> serviceCommands();

}  // namespace tavlo::cli
