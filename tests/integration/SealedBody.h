// A body that tells whether it is whole: a letter, and then as many of it as the number before it says. All of it
// follows from its first bytes, so that a check against them finds what a digest would.
#pragma once

#include <cstddef>
#include <string>

namespace tavlo::test {

inline std::string sealed(std::size_t count, char letter) {
  return std::to_string(count) + std::string(count + 1, letter);
}

inline bool isUnbroken(const std::string& body) {
  const std::size_t digits = body.find_first_not_of("0123456789");
  if (digits == std::string::npos || digits == 0 || digits > 9) return false;
  return body == sealed(std::stoul(body), body[digits]);
}

}  // namespace tavlo::test
