// The keyed archive: an object graph as a binary property list, as the platform's own archiver writes it.
//
// Values   decodes to a Value and encodes from one. Texts, numbers, truth values, dates, data, lists, maps,
//          sets, URLs and the null object are values of their kinds, mutable variants included; an object of
//          any other class is a ValueObject with its class name and its fields in the archive's order. Shared
//          objects stay shared.
// Absent   nothing at all (a reference to object 0) as the root is std::nullopt. Further down it stands as
//          Uid{0}, which is not the null object (Value()) and is written back as it came.
// Bounds   time and memory are linear in the input, whatever it says. Contents nested deeper than
//          property_list::kDeepest are refused, both ways.
// Threads  pure functions.
// Throws   ArchiveError, with what is wrong and where, for bytes that are no keyed archive and for a value that
//          none can hold (a Uid other than 0, nesting too deep). Nothing else but std::bad_alloc.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "common/Value.h"

namespace tavlo {

class ArchiveError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

namespace keyed_archive {

// The root object: the one under "root" or, lacking it, the only one there is.
[[nodiscard]] std::optional<Value> decode(std::string_view bytes);

[[nodiscard]] std::string encode(const std::optional<Value>& root);

}  // namespace keyed_archive
}  // namespace tavlo
