// How the text of a URL is cleaned before it is hashed. The writer of banner images and the readers clean
// differently, and that is the contract: a URL with a newline is stored under one name and looked up under
// another.
//
// Values   blanks are the Unicode sets of common/Utf8.h. Bytes that are no UTF-8 are no blanks.
// Threads  pure functions.
#pragma once

#include <string>
#include <string_view>

namespace tavlo {

// Without whitespace at both ends; newlines stay. A view into the text.
[[nodiscard]] std::string_view trimmedOfWhitespace(std::string_view text);

// Without any U+000A, wherever it stands, and then without whitespace and newlines at both ends. A view into the text,
// or into `room` when there was a U+000A to leave out.
[[nodiscard]] std::string_view cleanedUrl(std::string_view text, std::string& room);

}  // namespace tavlo
