// Describes a command line as its parser knows it. The parser's own header stands in one file, which gives its types.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/CommandDescription.h"

namespace tavlo::cli {

// The words that an option or argument takes, where it does not take any.
template <class Option>
using Choices = std::map<const Option*, std::vector<std::string>>;

template <class App, class Option>
[[nodiscard]] CommandDescription describe(const App& app, const Choices<Option>& choices,
                                          std::vector<std::string> words = {}) {
  const bool isProgram = words.empty();
  words.push_back(app.get_name());
  CommandDescription command{.words = words, .text = app.get_description(), .footer = app.get_footer()};
  for (const Option* option : app.get_options()) {
    if (!isProgram && option == app.get_help_ptr()) continue;
    const bool isArgument = option->get_positional();
    const auto taken = choices.find(option);
    ParameterDescription parameter{.name = isArgument ? option->get_name(true) : "--" + option->get_lnames().front(),
                                   .shortName = option->get_snames().empty() ? "" : "-" + option->get_snames().front(),
                                   .value = isArgument ? option->get_name(true) : option->get_type_name(),
                                   .text = option->get_description(),
                                   .required = option->get_required(),
                                   .mayRepeat = isArgument && option->get_expected_max() > 1};
    if (!isArgument && option->get_expected_max() == 0) parameter.value.clear();
    if (taken != choices.end()) parameter.choices = taken->second;
    (isArgument ? command.arguments : command.options).push_back(std::move(parameter));
  }
  for (const App* below : app.get_subcommands({})) command.commands.push_back(describe(*below, choices, words));
  return command;
}

}  // namespace tavlo::cli
