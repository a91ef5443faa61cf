// urlEncode: percent-encoding of one query value.
//
// Values   the unreserved characters of RFC 3986 (letters, digits, "-", ".", "_", "~") stay; every other
//          byte becomes "%" and two upper-case hexadecimal digits, so text outside ASCII goes byte by byte
//          of its UTF-8. Bytes that are no UTF-8 are encoded like any other.
// Absent   absent gives absent, empty gives empty.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "common/Text.h"

namespace tavlo {

[[nodiscard]] Text urlEncode(const Text& value);

// The same, appended to a text that is being built.
void appendUrlEncoded(std::string& out, std::string_view value);

// The same, written to `to`, which has room for urlEncodedRoom(value.size()) bytes. Gives the end of what counts.
[[nodiscard]] char* writeUrlEncoded(char* to, std::string_view value);
[[nodiscard]] constexpr std::size_t urlEncodedRoom(std::size_t size) { return 3 * size + 1; }

}  // namespace tavlo
