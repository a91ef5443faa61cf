// The binary property list codec, version 00.
//
// Values   decodes to and encodes from a Value. Every kind that files hold comes back as it was: integers up
//          to 128 bits, 32-bit floats, dates to the bit, UIDs, null, sets. A text that came from UTF-16 with
//          a lone surrogate holds it as three bytes and is written back so. Shared contents stay shared.
// Bounds   decoding takes time and memory linear in the input, whatever the input says; nesting deeper than
//          kDeepest is refused.
// Throws   nothing but std::bad_alloc.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "common/Value.h"

namespace tavlo::property_list {

inline constexpr std::size_t kDeepest = 512;

struct Decoded {
  std::optional<Value> value;
  std::string error;  // what is wrong and where, when there is no value
};

[[nodiscard]] Decoded decode(std::string_view bytes);

// Absent when the value holds a kind that no property list can (Kind::url, Kind::object). A text that is not
// UTF-8 is written as data, so that any reader opens the file and no byte is lost.
[[nodiscard]] std::optional<std::string> encode(const Value& root);

}  // namespace tavlo::property_list
