#include "cli/ArchiveNumbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tavlo::cli {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::string_view kNaNPrefix = "nan:";
constexpr std::string_view kDigits = "0123456789abcdef";

std::optional<unsigned> digitOf(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
  return std::nullopt;
}

}  // namespace

// An exponent only where the digits would be out of sight.
std::string realDigits(double value) {
  const double size = std::abs(value);
  const bool isFixed = size == 0 || (size >= 1e-4 && size < 1e16);
  std::array<char, 32> buffer{};
  const char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                        isFixed ? std::chars_format::fixed : std::chars_format::scientific)
                              .ptr;
  std::string digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  if (digits.find_first_of(".e") == std::string::npos) digits += ".0";
  return digits;
}

std::string realName(double value) {
  if (value == kInfinity) return "inf";
  if (value == -kInfinity) return "-inf";
  if (isSameDouble(value, kNaN)) return "nan";
  const auto bits = std::bit_cast<std::uint64_t>(value);
  std::string name(kNaNPrefix);
  for (unsigned shift = 64; shift > 0; shift -= 4) name += kDigits[(bits >> (shift - 4)) & 15U];
  return name;
}

std::optional<double> realOfName(std::string_view name) {
  if (name == "inf") return kInfinity;
  if (name == "-inf") return -kInfinity;
  if (name == "nan") return kNaN;
  constexpr std::size_t kBitDigits = 16;
  if (!name.starts_with(kNaNPrefix) || name.size() != kNaNPrefix.size() + kBitDigits) return std::nullopt;
  std::uint64_t bits = 0;
  for (const char c : name.substr(kNaNPrefix.size())) {
    const auto digit = digitOf(c);
    if (!digit) return std::nullopt;
    bits = (bits << 4U) | *digit;
  }
  const auto value = std::bit_cast<double>(bits);
  return std::isnan(value) ? std::optional(value) : std::nullopt;
}

std::string hexadecimalBytes(std::string_view bytes) {
  std::string digits;
  digits.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    digits += kDigits[byte >> 4U];
    digits += kDigits[byte & 15U];
  }
  return digits;
}

std::optional<std::string> bytesOfHexadecimal(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(digits.size() / 2);
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const auto high = digitOf(digits[i]);
    const auto low = digitOf(digits[i + 1]);
    if (!high || !low) return std::nullopt;
    bytes += static_cast<char>((*high << 4U) | *low);
  }
  return bytes;
}

}  // namespace tavlo::cli
