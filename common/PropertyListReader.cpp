#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

#include "common/PropertyList.h"
#include "common/PropertyListScalars.h"
#include "common/ValueNumbers.h"

namespace tavlo::property_list {
namespace {

constexpr std::string_view kMagic = "bplist";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n";
constexpr auto kXmlBeginnings = std::to_array<std::string_view>({"<?xml", "<!DOCTYPE", "<plist"});

bool isXml(std::string_view bytes) {
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  bytes.remove_prefix(std::min(bytes.find_first_not_of(kBlanks), bytes.size()));
  return std::any_of(kXmlBeginnings.begin(), kXmlBeginnings.end(),
                     [&](std::string_view beginning) { return bytes.starts_with(beginning); });
}

// The objects of one property list, by number, each decoded when it is first asked for and then kept.
// After a failure error() tells it, and the reader is of no more use.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] bool open();
  [[nodiscard]] std::uint64_t top() const { return top_; }
  // nullptr is a failure.
  [[nodiscard]] const Value* object(std::uint64_t number);
  [[nodiscard]] std::string takeError() { return std::move(error_); }

 private:
  enum class State : std::uint8_t { unread, begun, whole };

  struct Object {
    Value value;
    std::uint16_t height = 0;  // containers inside one another, this one included
    State state = State::unread;
  };

  // An object's bytes: `count` units of `unit` bytes behind its marker and length.
  struct Extent {
    unsigned form = 0;
    unsigned low = 0;  // the marker's lower half
    std::size_t begin = 0;
    std::size_t limit = 0;  // where the offset table or the trailer begins
    std::size_t contents = 0;
    std::size_t count = 0;
    std::size_t unit = 1;
  };

  // A container whose items are being decoded.
  struct Frame {
    std::size_t number = 0;
    Extent extent;
    std::size_t next = 0;
    [[nodiscard]] std::size_t references() const { return extent.form == kMap ? 2 * extent.count : extent.count; }
  };

  bool fail(std::string what) {
    error_ = std::move(what);
    return false;
  }
  bool fail(std::size_t number, const Extent& extent, const std::string& what) {
    return fail("object " + std::to_string(number) + " at byte " + std::to_string(extent.begin) + ": " + what);
  }

  [[nodiscard]] std::size_t end() const { return bytes_.size() - kTrailerSize; }
  [[nodiscard]] bool enter(std::uint64_t number, std::vector<Frame>& frames);
  [[nodiscard]] bool close(const Frame& frame);
  [[nodiscard]] bool findExtent(std::size_t number, Extent& extent);
  [[nodiscard]] bool shape(std::size_t number, Extent& extent);
  [[nodiscard]] bool readLength(std::size_t number, Extent& extent);
  [[nodiscard]] bool readScalar(std::size_t number, const Extent& extent, Value& value);
  [[nodiscard]] std::uint64_t reference(const Frame& frame, std::size_t index) const {
    return bigEndian(bytes_.substr(frame.extent.contents + (index * referenceSize_), referenceSize_));
  }
  [[nodiscard]] Value item(const Frame& frame, std::size_t index) const {
    return objects_[static_cast<std::size_t>(reference(frame, index))].value;
  }

  std::string_view bytes_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t table_ = 0;
  std::uint64_t top_ = 0;
  std::vector<Object> objects_;
  std::size_t visited_ = 0;  // the sum of the extents so far
  ValueNumbers keys_;
  std::string error_;
};

bool Reader::open() {
  if (isXml(bytes_)) return fail("an XML property list; only the binary form is read");
  if (!bytes_.starts_with(kMagic)) return fail("no property list: it does not begin with \"bplist\"");
  if (bytes_.size() < kHeader.size() + kTrailerSize) {
    return fail(std::to_string(bytes_.size()) + " bytes are too few for a header and a trailer");
  }
  if (!bytes_.starts_with(kHeader)) return fail("byte 6: a binary property list of another version than 00");
  const std::string_view trailer = bytes_.substr(end());
  offsetSize_ = static_cast<std::size_t>(bigEndian(trailer.substr(6, 1)));
  referenceSize_ = static_cast<std::size_t>(bigEndian(trailer.substr(7, 1)));
  const std::uint64_t count = bigEndian(trailer.substr(8, 8));
  top_ = bigEndian(trailer.substr(16, 8));
  const std::uint64_t table = bigEndian(trailer.substr(24, 8));

  const auto trailerFails = [&](const std::string& what) {
    return fail("trailer at byte " + std::to_string(end()) + ": " + what);
  };
  if (offsetSize_ < 1 || offsetSize_ > 8) return trailerFails("offset size " + std::to_string(offsetSize_));
  if (referenceSize_ < 1 || referenceSize_ > 8) {
    return trailerFails("reference size " + std::to_string(referenceSize_));
  }
  if (table < kHeader.size() || table > end()) return trailerFails("offset table at byte " + std::to_string(table));
  if (count > (end() - table) / offsetSize_) return trailerFails("no room for " + std::to_string(count) + " offsets");
  if (top_ >= count) return trailerFails("top object " + std::to_string(top_) + " of " + std::to_string(count));
  table_ = static_cast<std::size_t>(table);
  objects_.resize(static_cast<std::size_t>(count));
  return true;
}

const Value* Reader::object(std::uint64_t number) {
  std::vector<Frame> frames;
  if (!enter(number, frames)) return nullptr;
  while (!frames.empty()) {
    Frame& frame = frames.back();
    if (frame.next < frame.references()) {
      const std::uint64_t next = reference(frame, frame.next++);
      if (next >= objects_.size()) {
        fail(frame.number, frame.extent, "it refers to object " + std::to_string(next));
        return nullptr;
      }
      if (!enter(next, frames)) return nullptr;
    } else {
      if (!close(frame)) return nullptr;
      frames.pop_back();
    }
  }
  return &objects_[static_cast<std::size_t>(number)].value;
}

// Decodes a scalar at once, and puts a container on the frames.
bool Reader::enter(std::uint64_t number, std::vector<Frame>& frames) {
  Frame frame;
  frame.number = static_cast<std::size_t>(number);
  Object& object = objects_[frame.number];
  if (object.state == State::whole) return true;
  if (object.state == State::begun) return fail("object " + std::to_string(number) + ": it contains itself");
  if (!findExtent(frame.number, frame.extent)) return false;
  if (frame.extent.form < kList) {
    object.state = State::whole;
    return readScalar(frame.number, frame.extent, object.value);
  }
  if (frames.size() == kDeepest) return fail(frame.number, frame.extent, "nested too deep");
  object.state = State::begun;
  frames.push_back(frame);
  return true;
}

bool Reader::close(const Frame& frame) {
  Object& object = objects_[frame.number];
  std::size_t height = 0;
  for (std::size_t i = 0; i < frame.references(); ++i) {
    height = std::max<std::size_t>(height, objects_[static_cast<std::size_t>(reference(frame, i))].height);
  }
  // What was first met near the top may be shared by something deep down, so its height counts, not its depth.
  if (height == kDeepest) return fail(frame.number, frame.extent, "nested too deep");
  object.height = static_cast<std::uint16_t>(height + 1);
  object.state = State::whole;

  const std::size_t count = frame.extent.count;
  if (frame.extent.form == kMap) {
    std::vector<ValueMap::Entry> entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) entries.emplace_back(item(frame, i), item(frame, count + i));
    object.value = Value::map(ValueMap(entries, keys_));
    return true;
  }
  ValueList items;
  items.reserve(count);
  for (std::size_t i = 0; i < count; ++i) items.push_back(item(frame, i));
  object.value = frame.extent.form == kList ? Value::list(std::move(items)) : Value::set(std::move(items));
  return true;
}

bool Reader::findExtent(std::size_t number, Extent& extent) {
  const std::uint64_t begin = bigEndian(bytes_.substr(table_ + (number * offsetSize_), offsetSize_));
  const std::size_t tableEnd = table_ + (objects_.size() * offsetSize_);
  if (begin < kHeader.size() || (begin >= table_ && begin < tableEnd) || begin >= end()) {
    return fail("object " + std::to_string(number) + ": no object begins at byte " + std::to_string(begin));
  }
  extent.begin = static_cast<std::size_t>(begin);
  extent.limit = begin < table_ ? table_ : end();
  extent.contents = extent.begin + 1;
  if (!shape(number, extent)) return false;
  if (extent.count > (extent.limit - extent.contents) / extent.unit) {
    return fail(number, extent, "its contents reach beyond the end");
  }
  // Each is read once, so objects that do not lie over one another never sum up to more than the input.
  visited_ += extent.contents - extent.begin + (extent.count * extent.unit);
  return visited_ <= bytes_.size() || fail(number, extent, "objects overlap");
}

bool Reader::shape(std::size_t number, Extent& extent) {
  const auto marker = static_cast<unsigned char>(bytes_[extent.begin]);
  extent.form = marker >> 4U;
  extent.low = marker & 0xFU;
  const auto fixed = [&](bool known, std::size_t size) {
    extent.count = size;
    return known || fail(number, extent, "unknown marker " + std::to_string(marker));
  };
  switch (extent.form) {
    case kConstant: return fixed(extent.low == kNull || extent.low == kFalse || extent.low == kTrue, 0);
    case kInteger: return fixed(extent.low <= 4, std::size_t{1} << extent.low);
    case kReal: return fixed(extent.low == 2 || extent.low == 3, std::size_t{1} << extent.low);
    case kDate: return fixed(extent.low == 3, 8);
    case kUid: return fixed(extent.low <= 7, extent.low + 1);
    case kData:
    case kAscii: extent.unit = 1; break;
    case kUtf16: extent.unit = 2; break;
    case kList:
    case kSet: extent.unit = referenceSize_; break;
    case kMap: extent.unit = 2 * referenceSize_; break;
    default: return fixed(false, 0);
  }
  return readLength(number, extent);
}

bool Reader::readLength(std::size_t number, Extent& extent) {
  extent.count = extent.low;
  if (extent.low != kLongLength) return true;
  const std::size_t left = extent.limit - extent.contents;
  const unsigned marker = left > 0 ? static_cast<unsigned char>(bytes_[extent.contents]) : 0U;
  if (marker < 0x10 || marker > 0x13) return fail(number, extent, "its length is no integer");
  const std::size_t size = std::size_t{1} << (marker & 0xFU);
  if (size > left - 1) return fail(number, extent, "its length reaches beyond the end");
  const std::uint64_t count = bigEndian(bytes_.substr(extent.contents + 1, size));
  extent.contents += 1 + size;
  extent.count = static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes_.size()));  // too long is too long
  return true;
}

bool Reader::readScalar(std::size_t number, const Extent& extent, Value& value) {
  const std::string_view contents = bytes_.substr(extent.contents, extent.count * extent.unit);
  switch (extent.form) {
    case kConstant:
      if (extent.low != kNull) value = extent.low == kTrue;
      return true;
    case kInteger:
      if (contents.size() == 16) {
        value = Integer{.high = static_cast<std::int64_t>(bigEndian(contents.substr(0, 8))),
                        .low = bigEndian(contents.substr(8))};
      } else {
        value = static_cast<std::int64_t>(bigEndian(contents));
      }
      return true;
    case kReal:
      value = contents.size() == 4
                  ? Real{.value = widened(static_cast<std::uint32_t>(bigEndian(contents))), .narrow = true}
                  : Real{.value = std::bit_cast<double>(bigEndian(contents))};
      return true;
    case kDate: value = Date{.seconds = std::bit_cast<double>(bigEndian(contents))}; return true;
    case kUid: value = Uid{.index = bigEndian(contents)}; return true;
    case kData: value = Value::data(std::string(contents)); return true;
    case kUtf16: value = fromUtf16(contents); return true;
    default: break;
  }
  for (std::size_t i = 0; i < contents.size(); ++i) {
    if ((contents[i] & 0x80) == 0) continue;
    return fail(number, extent, "byte " + std::to_string(extent.contents + i) + " of its text is not ASCII");
  }
  value = contents;
  return true;
}

}  // namespace

Decoded decode(std::string_view bytes) {
  Reader reader(bytes);
  const Value* const value = reader.open() ? reader.object(reader.top()) : nullptr;
  if (!value) return {.value = std::nullopt, .error = reader.takeError()};
  return {.value = *value, .error = {}};
}

}  // namespace tavlo::property_list
