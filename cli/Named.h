// What words of the command line stand for: tables of rows with a `name`.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Errors.h"

namespace tavlo::cli {

template <class T>
struct Named {
  std::string_view name;
  T value;
};

// All names there are.
template <class Rows>
[[nodiscard]] std::vector<std::string> namesOf(const Rows& rows) {
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const auto& row : rows) names.emplace_back(row.name);
  return names;
}

// What the name stands for among the rows. Throws UsageError, with all names there are, for one that is none.
template <class Rows>
[[nodiscard]] const auto& named(const Rows& rows, const std::string& name, const std::string& what) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.name == name; });
  if (found != rows.end()) return *found;
  std::string names;
  for (const std::string& each : namesOf(rows)) names += (names.empty() ? "" : ", ") + each;
  throw UsageError(what + " \"" + name + "\" is none of " + names);
}

}  // namespace tavlo::cli
