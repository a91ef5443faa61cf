// Format rendering: how every text that the component builds writes a value into itself. The same in every
// locale of the process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/Text.h"
#include "common/Value.h"

namespace tavlo {

// What stands for an absent value, in requests and in log lines.
inline constexpr std::string_view kAbsent = "(null)";

// "%@" of a text: the text unchanged.
void appendText(std::string& out, const Text& text);

// "%@" of a truth value: "1" or "0".
void appendBoolean(std::string& out, bool value);

// "%d": signed decimal.
void appendInteger(std::string& out, std::int32_t value);

// "%f": fixed notation with six decimals, as C prints it ("-0.000000", "inf", "nan", a huge value in full).
void appendFixed(std::string& out, double value);

// "%@" of any value, its text form:
//   text       itself                      integer    decimal
//   boolean    1 or 0                      real       as "%.16g"
//   date       2001-01-01 00:00:00 +0000   data       its bytes
//   url        its text                    null       <null>
//   uid        decimal                     object     its class name
//   list, set  (a, b)                      map        {key = value; key = value}
// A date's year outside 0 to 9999 is written as it is, and a date beyond some 28,000 years as its seconds.
// Lists, sets and maps stop after 1 MiB or 512 levels, with "..." for what is left out; a text is always whole.
void appendTextForm(std::string& out, const std::optional<Value>& value);
[[nodiscard]] std::string textForm(const Value& value);

}  // namespace tavlo
