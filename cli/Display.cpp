#include "cli/Display.h"

#include <algorithm>
#include <array>
#include <utility>

#include "common/Utf8.h"

namespace tavlo::cli {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// What a terminal obeys, or what changes the order of what stands beside it.
constexpr auto kUnseen = std::to_array<Range>({
    {0x00, 0x1F},
    {0x7F, 0x9F},
    {0xAD, 0xAD},
    {0x61C, 0x61C},
    {0x200B, 0x200F},
    {0x2028, 0x202E},
    {0x2060, 0x206F},
    {0xFEFF, 0xFEFF},
    {0xFFF9, 0xFFFB},
    {0xE0000, 0xE007F},
});

bool isUnseen(char32_t c) {
  return std::any_of(kUnseen.begin(), kUnseen.end(), [c](Range range) { return range.first <= c && c <= range.last; });
}

std::string hexadecimal(char32_t value) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string digits;
  do {
    digits.insert(digits.begin(), kDigits[value % 16]);
    value /= 16;
  } while (value != 0);
  return digits;
}

void appendEscape(std::string& out, const CodePoint& point, char byte) {
  if (!point.valid) {
    out += "\\x" + hexadecimal(static_cast<unsigned char>(byte));
  } else if (byte == '\n') {
    out += "\\n";
  } else if (byte == '\r') {
    out += "\\r";
  } else if (byte == '\t') {
    out += "\\t";
  } else {
    out += "\\u{" + hexadecimal(point.value) + "}";
  }
}

std::string escaped(std::string_view text, std::string_view escapedToo) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint point = decodeUtf8(text, at);
    if (!point.valid || isUnseen(point.value)) {
      appendEscape(out, point, text[at]);
    } else {
      if (escapedToo.find(text[at]) != std::string_view::npos) out += '\\';
      out += text.substr(at, point.length);
    }
    at += point.length;
  }
  return out;
}

std::string_view opening(Style style) {
  switch (style) {
    case Style::plain: return "";
    case Style::heading: return "\x1b[1m";
    case Style::faint: return "\x1b[2m";
  }
  return "";
}

constexpr std::string_view kGap = "  ";

std::vector<std::size_t> naturalWidths(const std::vector<std::vector<Cell>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], displayWidth(row[i].text));
  }
  return widths;
}

// The widest columns give way first, all to the same width, down to one that still tells something.
void fit(std::vector<std::size_t>& widths, std::size_t available) {
  constexpr std::size_t kNarrowest = 8;
  const auto total = [&] {
    std::size_t sum = widths.empty() ? 0 : kGap.size() * (widths.size() - 1);
    for (const std::size_t width : widths) sum += width;
    return sum;
  };
  while (total() > available) {
    const std::size_t widest = *std::max_element(widths.begin(), widths.end());
    if (widest <= kNarrowest) return;
    std::size_t next = kNarrowest;
    for (const std::size_t width : widths) {
      if (width < widest) next = std::max(next, width);
    }
    const auto count = static_cast<std::size_t>(std::count(widths.begin(), widths.end(), widest));
    const std::size_t excess = (total() - available + count - 1) / count;
    std::replace(widths.begin(), widths.end(), widest, std::max(next, excess < widest ? widest - excess : 0));
  }
}

void appendCell(std::string& out, const Cell& cell, std::size_t width, bool styled) {
  const std::string_view style = styled ? opening(cell.style) : "";
  out += style;
  out += shortened(cell.text, width);
  if (!style.empty()) out += "\x1b[0m";
}

}  // namespace

std::string displayed(std::string_view text) { return escaped(text, "\\"); }

std::string harmless(std::string_view text) { return escaped(text, ""); }

std::string quoted(std::string_view text) { return '"' + escaped(text, "\\\"") + '"'; }

std::size_t displayWidth(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); at += decodeUtf8(text, at).length) ++count;
  return count;
}

std::string shortened(std::string_view text, std::size_t width) {
  if (displayWidth(text) <= width) return std::string(text);
  std::size_t at = 0;
  for (std::size_t count = 1; count < width; ++count) at += decodeUtf8(text, at).length;
  return std::string(text.substr(0, at)) + "…";
}

std::string table(const std::vector<std::vector<Cell>>& rows, const TableLook& look) {
  std::vector<std::size_t> widths = naturalWidths(rows);
  if (look.width) fit(widths, *look.width);
  std::string out;
  for (const auto& row : rows) {
    std::size_t missing = 0;  // blanks due before the next cell that shows something
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (!row[i].text.empty()) {
        out.append(missing, ' ');
        appendCell(out, row[i], widths[i], look.styled);
        missing = 0;
      }
      missing += widths[i] - std::min(widths[i], displayWidth(row[i].text)) + kGap.size();
    }
    out += '\n';
  }
  return out;
}

std::vector<Cell> headings(const std::vector<std::string>& names) {
  std::vector<Cell> row;
  row.reserve(names.size());
  for (const std::string& name : names) row.push_back({.text = name, .style = Style::heading});
  return row;
}

}  // namespace tavlo::cli
