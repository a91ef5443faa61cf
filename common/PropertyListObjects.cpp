#include "common/PropertyListObjects.h"

#include <algorithm>
#include <array>

#include "common/Numbered.h"
#include "common/PropertyList.h"

namespace tavlo::property_list {
namespace {

using Kind = Value::Kind;

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

}  // namespace

Kind Objects::Object::kind() const {
  switch (form) {
    case kConstant: return low == kNull ? Kind::null : Kind::boolean;
    case kInteger: return Kind::integer;
    case kReal: return Kind::real;
    case kDate: return Kind::date;
    case kData: return Kind::data;
    case kUid: return Kind::uid;
    case kList: return Kind::list;
    case kSet: return Kind::set;
    case kMap: return Kind::map;
    default: return Kind::text;
  }
}

bool Objects::isText(const Object& object, std::string_view text) const {
  if (object.form == kAscii) return contents(object) == text;
  return object.form == kUtf16 && fromUtf16(contents(object)) == text;
}

std::optional<std::size_t> Objects::find(const Object& map, std::string_view key) const {
  for (std::size_t i = map.count; i-- > 0;) {
    if (isText(object(part(map, i)), key)) return part(map, map.count + i);
  }
  return std::nullopt;
}

bool Objects::check() {
  if (!readTrailer() || !enter(top_)) return false;
  while (!frames_.empty()) {
    Frame& frame = frames_.back();
    if (frame.next < frame.object.parts()) {
      if (!enter(reference(frame.object, frame.next++))) return false;
    } else {
      if (!close(frame)) return false;
      frames_.pop_back();
    }
  }
  return true;
}

bool Objects::fail(std::string_view pattern, std::initializer_list<std::uint64_t> numbers) {
  error_ = numbered(pattern, numbers);
  return false;
}

bool Objects::fail(std::size_t number, const Object& object, std::string_view pattern, std::uint64_t last) {
  error_ = numbered("object # at byte #: ", {number, object.begin}).append(numbered(pattern, {last}));
  return false;
}

bool Objects::readTrailer() {
  if (isXml(bytes_)) return fail("an XML property list; only the binary form is read");
  if (!bytes_.starts_with(kMagic)) return fail("no property list: it does not begin with \"bplist\"");
  if (bytes_.size() < kHeader.size() + kTrailerSize) {
    return fail("# bytes are too few for a header and a trailer", {bytes_.size()});
  }
  if (!bytes_.starts_with(kHeader)) return fail("byte 6: a binary property list of another version than 00");
  const std::string_view trailer = bytes_.substr(end());
  offsetSize_ = static_cast<std::size_t>(bigEndian(trailer.substr(6, 1)));
  referenceSize_ = static_cast<std::size_t>(bigEndian(trailer.substr(7, 1)));
  const std::uint64_t count = bigEndian(trailer.substr(8, 8));
  const std::uint64_t top = bigEndian(trailer.substr(16, 8));
  const std::uint64_t table = bigEndian(trailer.substr(24, 8));

  if (offsetSize_ < 1 || offsetSize_ > 8) return fail("trailer at byte #: offset size #", {end(), offsetSize_});
  if (referenceSize_ < 1 || referenceSize_ > 8) {
    return fail("trailer at byte #: reference size #", {end(), referenceSize_});
  }
  if (table < kHeader.size() || table > end()) return fail("trailer at byte #: offset table at byte #", {end(), table});
  if (count > (end() - table) / offsetSize_) return fail("trailer at byte #: no room for # offsets", {end(), count});
  if (top >= count) return fail("trailer at byte #: top object # of #", {end(), top, count});
  top_ = static_cast<std::size_t>(top);
  table_ = static_cast<std::size_t>(table);
  notes_.resize(static_cast<std::size_t>(count));
  return true;
}

// Looks at what has no parts at once, and puts a container on the frames. Where it is called frames_ may grow.
bool Objects::enter(std::uint64_t any) {
  if (any >= notes_.size()) {
    return fail(frames_.back().number, frames_.back().object, "it refers to object #", any);
  }
  const auto number = static_cast<std::size_t>(any);
  const Note height = notes_[number] & kHeight;
  if (height == kBegun) return fail("object #: it contains itself", {number});
  if (height != 0) {
    frames_.back().height = std::max(frames_.back().height, height);
    meetAgain(number);
    return true;
  }
  Object object;
  if (!locate(number, object)) return false;
  if (!object.isContainer()) {
    notes_[number] |= 1U;
    if (object.form == kUid) noteUid(object);
    return object.form != kAscii || isAscii(number, object);
  }
  if (frames_.size() == kDeepest) return fail(number, object, "nested too deep");
  notes_[number] |= kBegun;
  frames_.push_back({.number = number, .object = object});
  return true;
}

void Objects::meetAgain(std::size_t number) {
  if ((notes_[number] & kAgain) != 0) return;
  notes_[number] |= kAgain;
  const Object object = this->object(number);
  if (object.isContainer()) containersAreShared_ = true;
  if (object.form == kUid) noteUid(object);
}

void Objects::noteUid(const Object& object) {
  const std::uint64_t index = uid(object);
  if (index >= notes_.size()) return;
  Note& note = notes_[static_cast<std::size_t>(index)];
  note |= (note & kOneUid) != 0 ? kManyUids : kOneUid;
}

bool Objects::close(const Frame& frame) {
  // What was first met near the top may be shared by something deep down, so its height counts, not its depth.
  const std::size_t height = std::max<std::size_t>(frame.height, 1);
  if (height > kDeepest) return fail(frame.number, frame.object, "nested too deep");
  Note& note = notes_[frame.number];
  note = static_cast<Note>((note & ~kHeight) | (height + 1));
  if (frames_.size() > 1) {
    Frame& parent = frames_[frames_.size() - 2];
    parent.height = std::max(parent.height, static_cast<Note>(height + 1));
  }
  return true;
}

bool Objects::locate(std::size_t number, Object& object) {
  const std::uint64_t begin = offset(number);
  const std::size_t tableEnd = table_ + (notes_.size() * offsetSize_);
  if (begin < kHeader.size() || (begin >= table_ && begin < tableEnd) || begin >= end()) {
    return fail("object #: no object begins at byte #", {number, begin});
  }
  object.begin = static_cast<std::size_t>(begin);
  switch (shape(object)) {
    case Flaw::none: break;
    case Flaw::unknownMarker:
      return fail(number, object, "unknown marker #", static_cast<unsigned char>(bytes_[object.begin]));
    case Flaw::lengthIsNoInteger: return fail(number, object, "its length is no integer");
    case Flaw::lengthReachesBeyond: return fail(number, object, "its length reaches beyond the end");
  }
  if (object.count > (limitOf(object.begin) - object.contents) / object.unit) {
    return fail(number, object, "its contents reach beyond the end");
  }
  // Each is read once, so objects that do not lie over one another never sum up to more than the input.
  visited_ += object.contents - object.begin + (object.count * object.unit);
  return visited_ <= bytes_.size() || fail(number, object, "objects overlap");
}

Objects::Flaw Objects::shape(Object& object) const {
  const auto marker = static_cast<unsigned char>(bytes_[object.begin]);
  object.form = marker >> 4U;
  object.low = marker & 0xFU;
  object.contents = object.begin + 1;
  const auto fixed = [&](bool known, std::size_t size) {
    object.count = size;
    return known ? Flaw::none : Flaw::unknownMarker;
  };
  switch (object.form) {
    case kConstant: return fixed(object.low == kNull || object.low == kFalse || object.low == kTrue, 0);
    case kInteger: return fixed(object.low <= 4, std::size_t{1} << object.low);
    case kReal: return fixed(object.low == 2 || object.low == 3, std::size_t{1} << object.low);
    case kDate: return fixed(object.low == 3, 8);
    case kUid: return fixed(object.low <= 7, object.low + 1);
    case kData:
    case kAscii: object.unit = 1; break;
    case kUtf16: object.unit = 2; break;
    case kList:
    case kSet: object.unit = referenceSize_; break;
    case kMap: object.unit = 2 * referenceSize_; break;
    default: return fixed(false, 0);
  }
  object.count = object.low;
  return object.low == kLongLength ? readLength(object) : Flaw::none;
}

Objects::Flaw Objects::readLength(Object& object) const {
  const std::size_t left = limitOf(object.begin) - object.contents;
  const unsigned marker = left > 0 ? static_cast<unsigned char>(bytes_[object.contents]) : 0U;
  if (marker < 0x10 || marker > 0x13) return Flaw::lengthIsNoInteger;
  const std::size_t size = std::size_t{1} << (marker & 0xFU);
  if (size > left - 1) return Flaw::lengthReachesBeyond;
  const std::uint64_t count = bigEndian(bytes_.substr(object.contents + 1, size));
  object.contents += 1 + size;
  object.count = static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes_.size()));  // too long is too long
  return Flaw::none;
}

bool Objects::isAscii(std::size_t number, const Object& object) {
  const std::string_view text = contents(object);
  const auto* const other = std::find_if(text.begin(), text.end(), [](char byte) { return (byte & 0x80) != 0; });
  if (other == text.end()) return true;
  const std::size_t at = object.contents + static_cast<std::size_t>(other - text.begin());
  return fail(number, object, "byte # of its text is not ASCII", at);
}

}  // namespace tavlo::property_list
