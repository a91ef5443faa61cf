#include <algorithm>
#include <bit>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/PropertyList.h"
#include "common/PropertyListScalars.h"

namespace tavlo::property_list {
namespace {

using Kind = Value::Kind;

// The fewest bytes that hold the number, at least one.
std::size_t byteCount(std::uint64_t number) {
  return std::max<std::size_t>(1, (static_cast<std::size_t>(std::bit_width(number)) + 7) / 8);
}

void appendMarker(std::string& out, unsigned form, unsigned low) {
  out.push_back(static_cast<char>((form << 4U) | low));
}

// One, two and four bytes are read as unsigned, eight and sixteen as signed.
void appendInteger(std::string& out, const Integer& integer) {
  unsigned exponent = integer.fitsSigned() ? 3 : 4;
  if (integer.fitsUnsigned() && integer.low <= 0xFFFFFFFFU) {
    exponent = integer.low <= 0xFFU ? 0 : integer.low <= 0xFFFFU ? 1 : 2;
  }
  appendMarker(out, kInteger, exponent);
  if (exponent == 4) appendBigEndian(out, static_cast<std::uint64_t>(integer.high), 8);
  appendBigEndian(out, integer.low, std::min<std::size_t>(8, std::size_t{1} << exponent));
}

void appendLength(std::string& out, unsigned form, std::size_t length) {
  if (length < kLongLength) {
    appendMarker(out, form, static_cast<unsigned>(length));
  } else {
    appendMarker(out, form, kLongLength);
    appendInteger(out, Integer::of(length));
  }
}

void appendReal(std::string& out, const Real& real) {
  const auto narrow = real.narrow ? narrowed(real.value) : std::nullopt;
  appendMarker(out, kReal, narrow ? 2 : 3);
  appendBigEndian(out, narrow ? *narrow : std::bit_cast<std::uint64_t>(real.value), narrow ? 4 : 8);
}

void appendData(std::string& out, std::string_view bytes) {
  appendLength(out, kData, bytes.size());
  out += bytes;
}

void appendText(std::string& out, std::string_view text) {
  if (std::all_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) == 0; })) {
    appendLength(out, kAscii, text.size());
    out += text;
  } else if (const auto units = toUtf16(text)) {
    appendLength(out, kUtf16, units->size() / 2);
    out += *units;
  } else {
    appendData(out, text);
  }
}

// Absent when no scalar of a property list can hold it.
std::optional<std::string> scalarBytes(const Value& value) {
  std::string out;
  switch (value.kind()) {
    case Kind::null: appendMarker(out, kConstant, kNull); break;
    case Kind::boolean: appendMarker(out, kConstant, *value.ifBoolean() ? kTrue : kFalse); break;
    case Kind::integer: appendInteger(out, *value.ifInteger()); break;
    case Kind::real: appendReal(out, *value.ifReal()); break;
    case Kind::date:
      appendMarker(out, kDate, 3);
      appendBigEndian(out, std::bit_cast<std::uint64_t>(value.ifDate()->seconds), 8);
      break;
    case Kind::text: appendText(out, *value.ifText()); break;
    case Kind::data: appendData(out, *value.ifData()); break;
    case Kind::uid: {
      const std::size_t size = byteCount(value.ifUid()->index);
      appendMarker(out, kUid, static_cast<unsigned>(size - 1));
      appendBigEndian(out, value.ifUid()->index, size);
      break;
    }
    default: return std::nullopt;
  }
  return out;
}

// Numbers the objects from the root on, then writes them: how wide a reference is shows only at the end.
class Writer {
 public:
  // The object's number, absent when it cannot be written.
  [[nodiscard]] std::optional<std::size_t> add(const Value& value, std::size_t depth);
  [[nodiscard]] std::string bytes() const;

 private:
  struct Object {
    const std::string* scalar = nullptr;  // its bytes; nullptr marks a container
    unsigned form = 0;
    std::size_t height = 0;  // containers inside one another, this one included
    std::vector<std::size_t> references;
  };

  [[nodiscard]] std::optional<std::size_t> addScalar(const Value& value);
  [[nodiscard]] std::optional<std::size_t> addContainer(const Value& value, std::size_t depth);
  static void append(std::string& out, const Object& object, std::size_t referenceSize);

  std::vector<Object> objects_;
  std::unordered_map<const void*, std::size_t> byIdentity_;
  // No hash table: the bytes may be chosen to collide in one.
  std::map<std::string, std::size_t> scalars_;
};

// Contents are known again by where they lie before they are looked at, so that sharing costs nothing.
std::optional<std::size_t> Writer::add(const Value& value, std::size_t depth) {
  const void* const identity = value.identity();
  if (const auto known = byIdentity_.find(identity); known != byIdentity_.end()) return known->second;
  const bool container = value.ifList() || value.ifSet() || value.ifMap();
  const auto number = container ? addContainer(value, depth) : addScalar(value);
  if (identity && number) byIdentity_.emplace(identity, *number);
  return number;
}

std::optional<std::size_t> Writer::addScalar(const Value& value) {
  auto bytes = scalarBytes(value);
  if (!bytes) return std::nullopt;
  const auto [scalar, isNew] = scalars_.try_emplace(std::move(*bytes), objects_.size());
  if (isNew) objects_.push_back({.scalar = &scalar->first, .form = 0, .height = 0, .references = {}});
  return scalar->second;
}

std::optional<std::size_t> Writer::addContainer(const Value& value, std::size_t depth) {
  if (depth == kDeepest) return std::nullopt;
  const std::size_t number = objects_.size();
  objects_.emplace_back();

  Object object;
  const auto addPart = [&](const Value& part) {
    const auto reference = add(part, depth + 1);
    if (!reference) return false;
    object.references.push_back(*reference);
    object.height = std::max(object.height, objects_[*reference].height);
    return true;
  };
  if (const ValueMap* const map = value.ifMap()) {
    object.form = kMap;
    const auto addKey = [&](const ValueMap::Entry& entry) { return addPart(entry.first); };
    const auto addValue = [&](const ValueMap::Entry& entry) { return addPart(entry.second); };
    if (!std::all_of(map->begin(), map->end(), addKey)) return std::nullopt;
    if (!std::all_of(map->begin(), map->end(), addValue)) return std::nullopt;
  } else {
    object.form = value.ifList() ? kList : kSet;
    const ValueList& items = value.ifList() ? *value.ifList() : *value.ifSet();
    if (!std::all_of(items.begin(), items.end(), addPart)) return std::nullopt;
  }
  // A part that was first met near the top may be deep by itself, so its height counts, not its depth.
  if (object.height == kDeepest) return std::nullopt;
  ++object.height;
  objects_[number] = std::move(object);
  return number;
}

void Writer::append(std::string& out, const Object& object, std::size_t referenceSize) {
  if (object.scalar) {
    out += *object.scalar;
    return;
  }
  const std::size_t count = object.references.size();
  appendLength(out, object.form, object.form == kMap ? count / 2 : count);
  for (const std::size_t reference : object.references) appendBigEndian(out, reference, referenceSize);
}

std::string Writer::bytes() const {
  std::string out(kHeader);
  std::vector<std::size_t> offsets;
  offsets.reserve(objects_.size());
  const std::size_t referenceSize = byteCount(objects_.size() - 1);
  for (const Object& object : objects_) {
    offsets.push_back(out.size());
    append(out, object, referenceSize);
  }
  const std::size_t table = out.size();
  const std::size_t offsetSize = byteCount(offsets.back());
  for (const std::size_t offset : offsets) appendBigEndian(out, offset, offsetSize);

  out.append(6, '\0');
  appendBigEndian(out, offsetSize, 1);
  appendBigEndian(out, referenceSize, 1);
  appendBigEndian(out, objects_.size(), 8);
  appendBigEndian(out, 0, 8);  // the root is object 0
  appendBigEndian(out, table, 8);
  return out;
}

}  // namespace

std::optional<std::string> encode(const Value& root) {
  Writer writer;
  if (!writer.add(root, 0)) return std::nullopt;
  return writer.bytes();
}

}  // namespace tavlo::property_list
