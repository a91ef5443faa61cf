// What the command line takes, for those who describe it: the manual page and the completions of shells.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavlo::cli {

struct ParameterDescription {
  std::string name;       // "--session", or of an argument "NAME"
  std::string shortName;  // "-h"; most have none
  std::string value;      // what it takes: "FILE", or of an argument its name; empty: it is a flag
  std::string text;
  std::vector<std::string> choices{};  // empty: anything
  bool required = false;
  bool mayRepeat = false;
};

struct CommandDescription {
  std::vector<std::string> words;  // "tavlo", "cache", "list"
  std::string text;
  std::string footer;
  std::vector<ParameterDescription> arguments{};  // in their order
  std::vector<ParameterDescription> options{};    // those of "tavlo" go with every command
  std::vector<CommandDescription> commands{};
};

// Of the program and all of its commands; --help, which each of them takes, is an option of the program.
[[nodiscard]] CommandDescription describeCommandLine();

// What a value is, for whoever completes it.
enum class ValueKind : std::uint8_t { choice, file, directory, other };

[[nodiscard]] inline ValueKind kindOf(const ParameterDescription& parameter) {
  if (!parameter.choices.empty()) return ValueKind::choice;
  if (parameter.value == "FILE" || parameter.value == "PATH") return ValueKind::file;
  return parameter.value == "DIR" ? ValueKind::directory : ValueKind::other;
}

// Calls `visit` with the command and all below it, each before its own.
template <class Visit>
void forEachCommand(const CommandDescription& command, const Visit& visit) {
  visit(command);
  for (const CommandDescription& below : command.commands) forEachCommand(below, visit);
}

}  // namespace tavlo::cli
