// The operations that a case can call, by their names.
#pragma once

#include <optional>
#include <string>

#include "common/Value.h"

namespace tavlo::conformance {

// Nothing for an argument and for an answer that is absent, and for the answer of an operation that has none. A
// bundle answers its path, an image the name of its file. Throws std::runtime_error for an unknown name.
[[nodiscard]] std::optional<Value> call(const std::string& operation, const std::optional<Value>& argument);

}  // namespace tavlo::conformance
