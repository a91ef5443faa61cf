#include "common/IntValue.h"

#include <cmath>
#include <limits>

#include "common/Utf8.h"

namespace tavlo {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int32_t>::min();

std::string_view withoutLeadingBlanks(std::string_view text) {
  while (!text.empty()) {
    const CodePoint first = decodeUtf8(text, 0);
    if (!first.valid || !isWhitespaceOrNewline(first.value)) break;
    text.remove_prefix(first.length);
  }
  return text;
}

std::int32_t low32(std::uint64_t bits) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)); }

std::int32_t truncated(double real) {
  if (!std::isfinite(real)) return 0;
  constexpr double kTwoTo32 = 4294967296.0;
  return low32(static_cast<std::uint64_t>(static_cast<std::int64_t>(std::fmod(std::trunc(real), kTwoTo32))));
}

}  // namespace

std::int32_t intValue(std::string_view text) {
  text = withoutLeadingBlanks(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  std::int64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    value = value * 10 + (c - '0');
    if (value > kLargest) return static_cast<std::int32_t>(negative ? kSmallest : kLargest);
  }
  return static_cast<std::int32_t>(negative ? -value : value);
}

std::int32_t intValue(const std::optional<Value>& value) {
  if (!value) return 0;
  if (const auto text = value->ifText()) return intValue(*text);
  if (const Integer* integer = value->ifInteger()) return low32(integer->low);
  if (const Real* real = value->ifReal()) return truncated(real->value);
  if (const bool* boolean = value->ifBoolean()) return *boolean ? 1 : 0;
  return 0;
}

}  // namespace tavlo
