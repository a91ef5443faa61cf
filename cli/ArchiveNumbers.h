// The numbers of ArchiveJson.h that JSON has no exact form for.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavlo::cli {

inline constexpr double kFrom1970To2001 = 978307200;  // seconds

[[nodiscard]] inline bool isSameDouble(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The JSON number of the fewest digits that reads back the same, with "." or an exponent. The value must be finite.
[[nodiscard]] std::string realDigits(double value);

// "inf", "-inf", "nan" or "nan:<64 bits>", of one that is not.
[[nodiscard]] std::string realName(double value);
[[nodiscard]] std::optional<double> realOfName(std::string_view name);

[[nodiscard]] std::string hexadecimalBytes(std::string_view bytes);
// Absent for an odd count and for other characters than digits, of either case.
[[nodiscard]] std::optional<std::string> bytesOfHexadecimal(std::string_view digits);

}  // namespace tavlo::cli
