#include "cli/Completions.h"
#include "cli/Words.h"

namespace tavlo::cli {
namespace {

// In single quotes, and with what separates the parts of a completion escaped.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == ':' || c == '[' || c == ']' || c == '\\') result += '\\';
    result += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return result;
}

std::string taken(const ParameterDescription& parameter) {
  switch (kindOf(parameter)) {
    case ValueKind::choice: return '(' + joined(parameter.choices, " ") + ')';
    case ValueKind::file: return "_files";
    case ValueKind::directory: return "_files -/";
    case ValueKind::other: break;
  }
  return " ";
}

std::string option(const ParameterDescription& option) {
  const std::string value = option.value.empty() ? "" : ':' + escaped(option.value) + ':' + taken(option);
  std::string names = option.name + (option.value.empty() ? "" : "=");
  if (!option.shortName.empty()) {
    names = '(' + option.shortName + ' ' + option.name + ")'{" + option.shortName + ',' + option.name + "}'";
  }
  return " \\\n    '" + names + '[' + escaped(option.text) + ']' + value + '\'';
}

std::string argument(const ParameterDescription& argument, int place) {
  return " \\\n    '" + (argument.mayRepeat ? "*" : std::to_string(place)) + (argument.required ? ":" : "::") +
         escaped(argument.name) + ':' + taken(argument) + '\'';
}

std::string function(const CommandDescription& command) {
  const std::string name = '_' + joined(command.words, "__");
  std::string text = '\n' + name + "() {\n";
  if (command.commands.empty()) {
    text += "  _arguments $_tavlo_globals";
    for (const ParameterDescription& each : command.options) text += option(each);
    int place = 0;
    for (const ParameterDescription& each : command.arguments) text += argument(each, ++place);
    return text + "\n}\n";
  }
  text += "  local -a commands line state\n  local context\n  typeset -A opt_args\n  commands=(\n";
  for (const CommandDescription& below : command.commands) {
    text += "    '" + below.words.back() + ':' + escaped(below.text) + "'\n";
  }
  return text +
         "  )\n  _arguments -C $_tavlo_globals '1: :->command' '*:: :->below' && return\n"
         "  case $state in\n"
         "    command) _describe -t commands command commands ;;\n"
         "    below) (( $+functions[" +
         name + "__$line[1]] )) && " + name +
         "__$line[1] ;;\n"
         "  esac\n}\n";
}

}  // namespace

std::string zshCompletion(const CommandDescription& program) {
  std::string text = "#compdef tavlo\n# zsh completion for tavlo\n\ntypeset -ga _tavlo_globals\n_tavlo_globals=(";
  for (const ParameterDescription& each : program.options) text += option(each);
  text += "\n)\n";
  forEachCommand(program, [&text](const CommandDescription& command) { text += function(command); });
  return text + "\n_tavlo \"$@\"\n";
}

}  // namespace tavlo::cli
