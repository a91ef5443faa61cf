#include "cli/Completions.h"
#include "cli/Words.h"

namespace tavlo::cli {
namespace {

constexpr const char* kFunctions = R"(
# The command so far, and which of its arguments comes next.
function __tavlo_place
    set -l path tavlo
    set -l place 1
    set -l takes
    set -l words (commandline -opc)
    for word in $words[2..-1]
        if test -n "$takes"
            set takes
        else if string match -q -- '-*' $word
            if contains -- "$path $word" $__tavlo_values; or contains -- "tavlo $word" $__tavlo_values
                set takes $word
            end
        else if contains -- "$path $word" $__tavlo_commands
            set path "$path $word"
        else
            set place (math $place + 1)
        end
    end
    printf '%s\n' $path $place
end

function __tavlo_at --argument-names path place
    set -l now (__tavlo_place)
    test "$now[1]" = "$path"; and test -z "$place" -o "$now[2]" = "$place"
end

complete -c tavlo -f
)";

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
  return result + '\'';
}

std::string taken(const ParameterDescription& parameter) {
  switch (kindOf(parameter)) {
    case ValueKind::choice: return " -a " + quoted(joined(parameter.choices, " "));
    case ValueKind::file: return " -F";
    case ValueKind::directory: return " -a '(__fish_complete_directories)'";
    case ValueKind::other: break;
  }
  return "";
}

std::string option(const ParameterDescription& option, const std::string& where) {
  std::string line = "complete -c tavlo" + where + " -l " + option.name.substr(2);
  if (!option.shortName.empty()) line += " -s " + option.shortName.substr(1);
  if (!option.value.empty()) line += (kindOf(option) == ValueKind::file ? " -r" : " -x") + taken(option);
  return line + " -d " + quoted(option.text) + '\n';
}

}  // namespace

std::string fishCompletion(const CommandDescription& program) {
  std::string commands = "set -g __tavlo_commands";
  std::string values = "set -g __tavlo_values";
  std::string lines;
  forEachCommand(program, [&](const CommandDescription& command) {
    const std::string path = joined(command.words, " ");
    const auto at = [&path](const std::string& place) { return " -n '__tavlo_at \"" + path + "\"" + place + "'"; };
    for (const CommandDescription& below : command.commands) {
      commands += " \\\n    " + quoted(joined(below.words, " "));
      lines += "complete -c tavlo" + at("") + " -a " + below.words.back() + " -d " + quoted(below.text) + '\n';
    }
    for (const ParameterDescription& each : command.options) {
      if (!each.value.empty()) values += " \\\n    " + quoted(path + ' ' + each.name);
      lines += option(each, command.words.size() == 1 ? "" : at(""));
    }
    int place = 0;
    for (const ParameterDescription& argument : command.arguments) {
      const std::string number = argument.mayRepeat ? "" : ' ' + std::to_string(++place);
      if (const std::string words = taken(argument); !words.empty()) {
        lines += "complete -c tavlo" + at(number) + words + '\n';
      }
    }
  });
  return "# fish completion for tavlo\n\n" + commands + '\n' + values + '\n' + kFunctions + lines;
}

}  // namespace tavlo::cli
