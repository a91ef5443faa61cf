// Numbered: texts with numbers in them, such as what is wrong with a file, and where.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tavlo {

// The pattern with the numbers, in decimal, in place of its "#".
[[nodiscard]] std::string numbered(std::string_view pattern, std::initializer_list<std::uint64_t> numbers);

}  // namespace tavlo
