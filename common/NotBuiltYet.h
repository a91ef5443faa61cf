// For operations that the face declares before their room is built.
#pragma once

#include <stdexcept>
#include <string>

namespace tavlo {

[[noreturn]] inline void notBuiltYet(const char* operation) {
  throw std::logic_error("TavloUtility::" + std::string(operation) + " is not built yet in this version");
}

}  // namespace tavlo
