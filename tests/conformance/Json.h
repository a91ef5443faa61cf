// The conformance files as values, and values as JSON for people.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/Value.h"

namespace tavlo::conformance {

// JSON's null is Kind::null, {"$date": N} the date N seconds after 1970, and a text's "${documents}",
// "${documentsUrl}" and "${resources}" are what World has in their place. Throws std::runtime_error, naming the file.
[[nodiscard]] Value readFile(const std::string& path);

// Nothing for a text that is no JSON.
[[nodiscard]] std::optional<Value> parsed(std::string_view text);

// On one line.
[[nodiscard]] std::string shown(const Value& value);

}  // namespace tavlo::conformance
