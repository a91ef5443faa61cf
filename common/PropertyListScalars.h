// How a binary property list holds numbers and text: what its reader and its writer share, in pairs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavlo::property_list {

// The upper half of an object's first byte. The lower half holds a size or a length.
enum Form : unsigned {
  kConstant = 0x0,
  kInteger = 0x1,
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kAscii = 0x5,
  kUtf16 = 0x6,
  kUid = 0x8,
  kList = 0xA,
  kSet = 0xC,
  kMap = 0xD,
};

inline constexpr unsigned kNull = 0;
inline constexpr unsigned kFalse = 8;
inline constexpr unsigned kTrue = 9;
inline constexpr unsigned kLongLength = 0xF;  // the length follows as an integer

inline constexpr std::string_view kHeader = "bplist00";
inline constexpr std::size_t kTrailerSize = 32;

// Of at most eight bytes.
[[nodiscard]] inline std::uint64_t bigEndian(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = (value << 8U) | static_cast<unsigned char>(byte);
  return value;
}
void appendBigEndian(std::string& out, std::uint64_t value, std::size_t size);

// Between 32 and 64 bits without the change of a bit, numbers that are no number included. Absent when 32
// bits do not hold it.
[[nodiscard]] double widened(std::uint32_t bits);
[[nodiscard]] std::optional<std::uint32_t> narrowed(double value);

// Big-endian UTF-16 and UTF-8. A lone surrogate is three bytes of UTF-8; UTF-8 that would not come back the
// same is absent as UTF-16.
[[nodiscard]] std::string fromUtf16(std::string_view units);
[[nodiscard]] std::optional<std::string> toUtf16(std::string_view text);

}  // namespace tavlo::property_list
