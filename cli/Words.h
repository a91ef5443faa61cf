// Lists of words as one text.
#pragma once

#include <string>
#include <vector>

namespace tavlo::cli {

[[nodiscard]] inline std::string joined(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

}  // namespace tavlo::cli
