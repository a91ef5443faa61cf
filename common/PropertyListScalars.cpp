#include "common/PropertyListScalars.h"

#include <bit>
#include <cmath>
#include <limits>

#include "common/Utf8.h"

namespace tavlo::property_list {
namespace {

constexpr std::uint64_t kExponent = std::uint64_t{0x7FF} << 52U;
constexpr unsigned kDroppedBits = 29;  // of a fraction, from 64 bits to 32

bool isHighSurrogate(char32_t unit) { return (unit & ~0x3FFU) == 0xD800U; }
bool isLowSurrogate(char32_t unit) { return (unit & ~0x3FFU) == 0xDC00U; }

}  // namespace

void appendBigEndian(std::string& out, std::uint64_t value, std::size_t size) {
  for (std::size_t i = size; i-- > 0;) out.push_back(static_cast<char>(value >> (8 * i)));
}

// What is no number goes by its bits: the machine's own conversion would set one of them.
double widened(std::uint32_t bits) {
  const auto number = std::bit_cast<float>(bits);
  if (!std::isnan(number)) return number;
  const std::uint64_t sign = bits >> 31U;
  const std::uint64_t fraction = bits & 0x7FFFFFU;
  return std::bit_cast<double>((sign << 63U) | kExponent | (fraction << kDroppedBits));
}

std::optional<std::uint32_t> narrowed(double value) {
  if (std::isnan(value)) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto narrow =
        static_cast<std::uint32_t>(((bits >> 32U) & 0x80000000U) | 0x7F800000U | ((bits >> kDroppedBits) & 0x7FFFFFU));
    if (std::bit_cast<std::uint64_t>(widened(narrow)) != bits) return std::nullopt;
    return narrow;
  }
  if (std::isfinite(value) && std::abs(value) > std::numeric_limits<float>::max()) return std::nullopt;
  const auto narrow = static_cast<float>(value);
  if (static_cast<double>(narrow) != value) return std::nullopt;
  return std::bit_cast<std::uint32_t>(narrow);
}

std::string fromUtf16(std::string_view units) {
  const auto unitAt = [&](std::size_t at) { return static_cast<char32_t>(bigEndian(units.substr(at, 2))); };
  std::string text;
  for (std::size_t at = 0; at < units.size(); at += 2) {
    char32_t codePoint = unitAt(at);
    const char32_t next = at + 2 < units.size() ? unitAt(at + 2) : 0;
    if (isHighSurrogate(codePoint) && isLowSurrogate(next)) {
      codePoint = 0x10000U + ((codePoint & 0x3FFU) << 10U) + (next & 0x3FFU);
      at += 2;
    }
    appendUtf8(text, codePoint);
  }
  return text;
}

std::optional<std::string> toUtf16(std::string_view text) {
  std::string units;
  char32_t previous = 0;
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint next = decodeUtf8(text, at, Surrogates::accepted);
    if (!next.valid || (isHighSurrogate(previous) && isLowSurrogate(next.value))) return std::nullopt;
    if (next.value < 0x10000) {
      appendBigEndian(units, next.value, 2);
    } else {
      appendBigEndian(units, 0xD800U + ((next.value - 0x10000U) >> 10U), 2);
      appendBigEndian(units, 0xDC00U + (next.value & 0x3FFU), 2);
    }
    previous = next.value;
    at += next.length;
  }
  return units;
}

}  // namespace tavlo::property_list
