// Tables and results of the C interface, as tests in C++ want them.
#pragma once

#include <memory>
#include <string>

#include "c/tavlo.h"

namespace tavlo::test {

// A table of zeros with its size set.
template <class Table>
[[nodiscard]] Table table() {
  Table made{};
  made.size = sizeof made;
  return made;
}

[[nodiscard]] inline std::string asString(tavlo_text text) {
  return text.data ? std::string(text.data, text.size) : "absent";
}

// The text of an operation, "absent", or the operation's error.
template <class Operation, class... Arguments>
[[nodiscard]] std::string textOf(const Operation& operation, Arguments... arguments) {
  tavlo_string result{};
  if (operation(arguments..., &result) != TAVLO_OK) return tavlo_last_error();
  const std::string text = result.data ? std::string(result.data, result.size) : "absent";
  tavlo_string_free(&result);
  return text;
}

struct FreeValue {
  void operator()(tavlo_value* value) const { tavlo_value_free(value); }
};
using OwnedValue = std::unique_ptr<tavlo_value, FreeValue>;

[[nodiscard]] inline OwnedValue owned(tavlo_value* value) { return OwnedValue(value); }
[[nodiscard]] inline OwnedValue textValue(const char* text) {
  return owned(tavlo_value_from_text(tavlo_text_of(text)));
}

[[nodiscard]] inline std::string formOf(const OwnedValue& value) {
  return textOf(tavlo_value_text_form, static_cast<const tavlo_value*>(value.get()));
}

}  // namespace tavlo::test
