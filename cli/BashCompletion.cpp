#include "cli/Completions.h"
#include "cli/Words.h"

namespace tavlo::cli {
namespace {

constexpr const char* kFunction = R"(
_tavlo() {
  local cur=${COMP_WORDS[COMP_CWORD]} path=tavlo place=1 takes='' only_arguments='' word i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $word == '=' ]]; then
      continue
    elif [[ -n $takes ]]; then
      takes=''
    elif [[ $word == -- ]]; then
      only_arguments=yes
    elif [[ $word == -* && -z $only_arguments ]]; then
      takes=${_tavlo_values["$path $word"]:-${_tavlo_values["tavlo $word"]:-}}
    elif [[ " ${_tavlo_commands[$path]:-} " == *" $word "* ]]; then
      path+=" $word"
    else
      place=$((place + 1))
    fi
  done
  [[ $cur != '=' ]] || cur=''
  if [[ -n $takes ]]; then
    :
  elif [[ $cur == -* && -z $only_arguments ]]; then
    takes=${_tavlo_options[tavlo]}
    [[ $path == tavlo ]] || takes+=" ${_tavlo_options[$path]:-}"
  elif [[ -n ${_tavlo_commands[$path]:-} ]]; then
    takes=${_tavlo_commands[$path]}
  else
    takes=${_tavlo_values["$path $place"]:-${_tavlo_values["$path *"]:-}}
  fi
  case $takes in
    '' | '<other>') ;;
    '<file>')
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      ;;
    '<directory>')
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$cur")
      ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$takes" -- "$cur") ;;
  esac
}

complete -F _tavlo tavlo
)";

std::string taken(const ParameterDescription& parameter) {
  switch (kindOf(parameter)) {
    case ValueKind::choice: return joined(parameter.choices, " ");
    case ValueKind::file: return "<file>";
    case ValueKind::directory: return "<directory>";
    case ValueKind::other: break;
  }
  return "<other>";
}

std::string row(const std::string& key, const std::string& value) { return "  ['" + key + "']='" + value + "'\n"; }

}  // namespace

std::string bashCompletion(const CommandDescription& program) {
  std::string commands = "declare -gA _tavlo_commands=(\n";
  std::string options = "declare -gA _tavlo_options=(\n";
  std::string values = "declare -gA _tavlo_values=(\n";
  forEachCommand(program, [&](const CommandDescription& command) {
    const std::string path = joined(command.words, " ");
    std::vector<std::string> names;
    for (const CommandDescription& below : command.commands) names.push_back(below.words.back());
    if (!names.empty()) commands += row(path, joined(names, " "));
    names.clear();
    for (const ParameterDescription& option : command.options) {
      names.push_back(option.name);
      if (!option.value.empty()) values += row(path + ' ' + option.name, taken(option));
    }
    if (!names.empty()) options += row(path, joined(names, " "));
    int place = 0;
    for (const ParameterDescription& argument : command.arguments) {
      values += row(path + ' ' + (argument.mayRepeat ? "*" : std::to_string(++place)), taken(argument));
    }
  });
  return "# bash completion for tavlo\n\n" + commands + ")\n" + options + ")\n" + values + ")\n" + kFunction;
}

}  // namespace tavlo::cli
