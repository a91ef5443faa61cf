// intValue: the platform's integer reading of a value.
//
// Values   a text gives its leading decimal integer: blanks and newlines, one sign, then ASCII digits up to
//          the first other character; 0 without a digit, the largest or smallest 32-bit integer when out of
//          range. A number gives its whole part's low 32 bits, as a signed integer (a real that is infinite
//          or no number gives 0). A truth value gives 1 or 0.
// Absent   absent gives 0, and so does every other kind.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "common/Value.h"

namespace tavlo {

[[nodiscard]] std::int32_t intValue(const std::optional<Value>& value);
[[nodiscard]] std::int32_t intValue(std::string_view text);

}  // namespace tavlo
