// The keyed archive: an object graph as a binary property list, as the platform's own archiver writes it.
//
// Values   decodes to a Value and encodes from one. Texts, numbers, truth values, dates, data, lists, maps,
//          sets, URLs and the null object are values of their kinds, mutable variants included; an object of
//          any other class is a ValueObject with its class name and its fields in the archive's order. Shared
//          objects stay shared. A map's keys are of any kind; of a key that is given twice the last value
//          counts, at the first one's place.
// Absent   nothing at all (a reference to object 0) as the root is std::nullopt. Further down it stands as
//          Uid{0}, which is not the null object (Value()) and is written back as it came.
// Bounds   time and memory are linear in the input, whatever it says. Archives larger than kLargestArchive and
//          contents nested deeper than property_list::kDeepest are refused, both ways; so are URLs and objects
//          of named classes that repeat texts which stand in the archive once, beyond 1 MiB and sixteen times
//          its size in all. Not read are containers that the property list shares below the archive's own
//          references, so that with each counted wherever it stands they have more parts than the archive has
//          bytes and 65,536 more.
// Threads  pure functions.
// Throws   ArchiveError, with what is wrong and where, for bytes that are no keyed archive and for a value that
//          none can hold. Nothing else but std::bad_alloc.
#pragma once

#include <cstddef>
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

// In bytes.
inline constexpr std::size_t kLargestArchive = std::size_t{4} << 20U;

// The root object: the one under "root" or, lacking it, the only one there is. The format's version must be
// 100000; any archiver's name will do, and a class counts by its own name, not by its superclasses. What other
// archivers write is read, too: a date's time as an integer, a text as UTF-8 under "NS.bytes", and the text, data or
// time of such an object by reference to a plain value. A field whose name begins with "$" has one "$" more in an
// archive, which its ValueObject does not have; the archiver's own names "$0", "$1" and so on stay as they are.
[[nodiscard]] std::optional<Value> decode(std::string_view bytes);

// As the platform's archiver lays it down: objects in the order in which they are met, equal plain values and
// classes once, lists, sets and maps as the immutable classes. Absent, and Uid{0}, are a root that is nothing
// at all. Refused are any other Uid, text that is not UTF-8 (lone surrogates, three bytes each, are written), a
// URL's base that is no URL, an object without a class name, of a class that is a kind of value, or with a
// field whose name is no text.
[[nodiscard]] std::string encode(const std::optional<Value>& root);

}  // namespace keyed_archive
}  // namespace tavlo
