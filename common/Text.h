// Text: a string that may be absent.
//
// Values   UTF-8, never checked and never changed on the way through.
// Absent   std::nullopt is "absent"; the empty string is a value. They never turn into each other.
#pragma once

#include <optional>
#include <string>

namespace tavlo {

using Text = std::optional<std::string>;

}  // namespace tavlo
