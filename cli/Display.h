// How values and tables are shown to people.
//
// Values   whatever a text holds, what is shown is UTF-8 of one line that cannot drive a terminal: control
//          characters, line separators, direction marks and bytes that are no UTF-8 stand as escapes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavlo::cli {

// "\n", "\t", "\r", "\\", "\u{1b}" and, for a byte that is no UTF-8, "\xff".
[[nodiscard]] std::string displayed(std::string_view text);

// The same with backslashes as they are, for messages, where nothing has to be read back.
[[nodiscard]] std::string harmless(std::string_view text);

// A displayed text between quotation marks, with those inside escaped, so that "" and "absent" are seen for what they
// are.
[[nodiscard]] std::string quoted(std::string_view text);

// The number of code points.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

// At most `width` code points, the last one "…" where something was left out.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t width);

enum class Style : std::uint8_t { plain, heading, faint };

struct Cell {
  std::string text;  // ready to be shown
  Style style = Style::plain;
};

struct TableLook {
  bool styled = false;               // with the terminal's bold and faint
  std::optional<std::size_t> width;  // of the terminal; the widest columns are shortened to fit
};

// One line a row, columns as wide as they need to be and two blanks apart, without blanks at the end.
[[nodiscard]] std::string table(const std::vector<std::vector<Cell>>& rows, const TableLook& look = {});

// A row of headings.
[[nodiscard]] std::vector<Cell> headings(const std::vector<std::string>& names);

}  // namespace tavlo::cli
