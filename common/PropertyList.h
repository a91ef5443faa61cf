// The binary property list codec, version 00.
//
// Values   decodes to and encodes from a Value. Every kind that files hold comes back as it was: integers up
//          to 128 bits, 32-bit floats, dates to the bit, UIDs, null, sets. Text that came from UTF-16 with a
//          lone surrogate holds it as three bytes and is written back so. Shared contents stay shared. Only a
//          signalling value that is no number comes back quiet where processors load it so (32-bit x86).
// Absent   no value and an error text from bytes that are no such list; no bytes from a value that none holds.
// Bounds   time and memory are linear in the input, whatever the input says. Contents nested deeper than
//          kDeepest are refused, both ways.
// Threads  any thread, any time.
// Throws   nothing but std::bad_alloc.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "common/Value.h"

namespace tavlo::property_list {

// The most lists, sets and maps that may lie inside one another, the outermost included.
inline constexpr std::size_t kDeepest = 512;

struct Decoded {
  std::optional<Value> value;
  std::string error;  // what is wrong and where, when there is no value
};

// The whole input is one property list. Of a map's key that is given twice the last value counts.
[[nodiscard]] Decoded decode(std::string_view bytes);

// Absent when the value is nested too deep or holds a kind that no property list can (Kind::url,
// Kind::object). Text that is not UTF-8 is written as data, so that any reader opens the file and no byte is
// lost. Equal values give equal bytes when they share alike and their maps and sets are in the same order.
[[nodiscard]] std::optional<std::string> encode(const Value& root);

}  // namespace tavlo::property_list
