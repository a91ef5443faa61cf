// ArchiveJson: what a keyed archive holds, as JSON and back.
//
//   a text                      "text"; one that is no UTF-8 {"$text": "<its bytes>"}
//   a truth value               true, false
//   an integer, up to 128 bits  its digits
//   a real                      as few digits as read back the same, always with "." or an exponent;
//                               {"$real": "inf"}, "-inf", "nan", or "nan:<its 64 bits>"
//   a date                      {"$date": seconds since 1970}; with "since2001": seconds, where the sum of those
//                               and 978307200 would not give them back. Both may be texts, as with a real
//   data                        {"$data": "<bytes>"}
//   a list, a set               [...], {"$set": [...]}, a set's items in the order of their texts
//   a map                       {"key": value, ...}; {"$map": [[key, value], ...]} when a key is no text, is no
//                               UTF-8 or begins with "$"
//   a URL                       {"$url": text, "base": URL}, the base as a text when it has none itself
//   an object of a class        {"$class": name, "field": value, ...}; with "$fields": [[name, value], ...] where
//                               they could not be keys of a map
//   the null object             {"$null": true}
//   nothing at all              null
//   another reference           {"$uid": index}, which no archive holds
//
// Values   bytes and bits are in hexadecimal. Entries keep their order. Reading is the inverse of writing, to the bit,
//          but for two things: what was shared is written, and read, several times, and a real that was stored in 32
//          bits comes back as the same number in 64.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "common/Value.h"

namespace tavlo::cli {

enum class ArchiveLayout : std::uint8_t { oneLine, indented };

class ArchiveTooLarge : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr std::size_t kLongestArchiveJson = std::size_t{64} << 20U;  // bytes

// Without a newline at the end. Takes time and memory in proportion to `longest` at most, however much the value
// shares. Throws ArchiveTooLarge when the text would be longer.
[[nodiscard]] std::string toArchiveJson(const std::optional<Value>& value, ArchiveLayout layout,
                                        std::size_t longest = kLongestArchiveJson);

// Throws JsonError, with the line and the place ("[2].startdate: expected ...").
[[nodiscard]] std::optional<Value> parseArchiveJson(std::string_view document);

}  // namespace tavlo::cli
