// The objects of a binary property list as they lie there, by number: looked at, and none made.
//
// Values   an object's parts are the numbers of others; those of a map are all keys and then all values.
// Bounds   what check() lets pass has no circles and no nesting deeper than kDeepest, no object reaches beyond its
//          bytes, and all together are no larger than the input.
// Threads  one thread at a time, after check() any number.
// Throws   nothing but std::bad_alloc.
//
// The bytes must outlive everything here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/PropertyListScalars.h"
#include "common/Value.h"

namespace tavlo::property_list {

class Objects {
 public:
  // `count` units of `unit` bytes behind the marker and the length.
  struct Object {
    unsigned form = 0;
    unsigned low = 0;  // the marker's lower half
    std::size_t begin = 0;
    std::size_t contents = 0;
    std::size_t count = 0;
    std::size_t unit = 1;

    [[nodiscard]] bool isContainer() const { return form >= kList; }
    [[nodiscard]] std::size_t parts() const { return form == kMap ? 2 * count : isContainer() ? count : 0; }
    [[nodiscard]] Value::Kind kind() const;
  };

  explicit Objects(std::string_view bytes) : bytes_(bytes) {}

  // Looks at the top object and at all that it is made of, in the order of the references. When false, takeError()
  // says why; otherwise what follows may be asked about every object that it looked at.
  [[nodiscard]] bool check();
  [[nodiscard]] std::string takeError() { return std::move(error_); }

  [[nodiscard]] std::size_t top() const { return top_; }
  [[nodiscard]] Object object(std::size_t number) const {
    Object object;
    object.begin = static_cast<std::size_t>(offset(number));
    const auto marker = static_cast<unsigned char>(bytes_[object.begin]);
    object.form = marker >> 4U;
    object.low = marker & 0xFU;
    object.contents = object.begin + 1;
    object.count = object.low;
    if (object.form == kUid) {
      object.count = object.low + 1;  // with the maps' references the most frequent by far
    } else if (object.form == kMap && object.low != kLongLength) {
      object.unit = 2 * referenceSize_;
    } else if (object.form != kAscii || object.low == kLongLength) {
      static_cast<void>(shape(object));
    }
    return object;
  }
  [[nodiscard]] std::size_t part(const Object& object, std::size_t index) const {
    return static_cast<std::size_t>(reference(object, index));
  }
  // Of a map, its keys and values.
  [[nodiscard]] std::string_view contents(const Object& object) const {
    return bytes_.substr(object.contents, object.count * object.unit);
  }
  [[nodiscard]] std::string_view keys(const Object& map) const {
    return bytes_.substr(map.contents, map.count * referenceSize_);
  }
  [[nodiscard]] std::uint64_t uid(const Object& object) const { return bigEndian(contents(object)); }
  [[nodiscard]] bool isText(const Object& object, std::string_view text) const;
  // The value under that key in a map. Of a key that is given twice the last value counts.
  [[nodiscard]] std::optional<std::size_t> find(const Object& map, std::string_view key) const;

  // Whether more than one way leads there: to an object, and to whatever UIDs of that index mean. Where containers
  // are shared that is so of all.
  [[nodiscard]] bool isShared(std::size_t number) const {
    return containersAreShared_ || (notes_[number] & kAgain) != 0;
  }
  [[nodiscard]] bool isSharedByUids(std::size_t index) const {
    return containersAreShared_ || index >= notes_.size() || (notes_[index] & kManyUids) != 0;
  }

 private:
  // A note of an object: its height (containers inside one another, this one included) and one, and what else is known.
  using Note = std::uint16_t;
  static constexpr Note kHeight = 0x3FF;
  static constexpr Note kBegun = kHeight;
  static constexpr Note kAgain = 0x400;
  static constexpr Note kOneUid = 0x800;
  static constexpr Note kManyUids = 0x1000;

  enum class Flaw : std::uint8_t { none, unknownMarker, lengthIsNoInteger, lengthReachesBeyond };

  // A container whose parts are being looked at.
  struct Frame {
    std::size_t number = 0;
    Object object;
    std::size_t next = 0;
    Note height = 0;  // the greatest of the parts', as noted
  };

  // Patterns with numbers in place of "#".
  bool fail(std::string_view pattern, std::initializer_list<std::uint64_t> numbers = {});
  bool fail(std::size_t number, const Object& object, std::string_view pattern, std::uint64_t last = 0);

  [[nodiscard]] std::uint64_t reference(const Object& object, std::size_t index) const {
    return bigEndian({bytes_.data() + object.contents + (index * referenceSize_), referenceSize_});
  }
  [[nodiscard]] bool readTrailer();
  [[nodiscard]] bool enter(std::uint64_t any);
  void meetAgain(std::size_t number);
  void noteUid(const Object& object);
  [[nodiscard]] bool close(const Frame& frame);
  [[nodiscard]] bool locate(std::size_t number, Object& object);
  [[nodiscard]] bool isAscii(std::size_t number, const Object& object);
  [[nodiscard]] std::uint64_t offset(std::size_t number) const {
    return bigEndian({bytes_.data() + table_ + (number * offsetSize_), offsetSize_});
  }
  [[nodiscard]] std::size_t end() const { return bytes_.size() - kTrailerSize; }
  [[nodiscard]] std::size_t limitOf(std::size_t begin) const { return begin < table_ ? table_ : end(); }
  [[nodiscard]] Flaw shape(Object& object) const;
  [[nodiscard]] Flaw readLength(Object& object) const;

  std::string_view bytes_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t table_ = 0;
  std::size_t top_ = 0;
  std::size_t visited_ = 0;  // the sum of the objects so far, in bytes
  bool containersAreShared_ = false;
  std::vector<Note> notes_;
  std::vector<Frame> frames_;
  std::string error_;
};

}  // namespace tavlo::property_list
