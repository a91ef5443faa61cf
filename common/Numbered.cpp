#include "common/Numbered.h"

namespace tavlo {

std::string numbered(std::string_view pattern, std::initializer_list<std::uint64_t> numbers) {
  std::string text;
  const auto* number = numbers.begin();
  for (const char c : pattern) {
    if (c == '#' && number != numbers.end()) {
      text += std::to_string(*number++);
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace tavlo
