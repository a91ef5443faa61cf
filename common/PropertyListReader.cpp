#include <bit>
#include <cstdint>

#include "common/PropertyList.h"
#include "common/PropertyListValues.h"

namespace tavlo::property_list {
namespace {

Integer integerOf(std::string_view bytes) {
  if (bytes.size() < 16) return Integer::of(static_cast<std::int64_t>(bigEndian(bytes)));
  return {.high = static_cast<std::int64_t>(bigEndian(bytes.substr(0, 8))), .low = bigEndian(bytes.substr(8))};
}

Real realOf(std::string_view bytes) {
  if (bytes.size() == 4) return {.value = widened(static_cast<std::uint32_t>(bigEndian(bytes))), .narrow = true};
  return {.value = std::bit_cast<double>(bigEndian(bytes))};
}

}  // namespace

Value Values::of(std::size_t number, bool isKept) {
  const Objects::Object object = objects_.object(number);
  const bool hasContents =
      object.isContainer() || object.form == kAscii || object.form == kUtf16 || object.form == kData;
  if (!hasContents || !(isKept || objects_.isShared(number))) return made(object);
  if (const auto kept = kept_.find(number); kept != kept_.end()) return kept->second;
  return kept_.emplace(number, made(object)).first->second;
}

// Deep nesting is refused before, so that this may call itself.
Value Values::made(const Objects::Object& object) {
  const std::string_view contents = object.isContainer() ? std::string_view() : objects_.contents(object);
  switch (object.form) {
    case kConstant: return object.low == kNull ? Value() : Value(object.low == kTrue);
    case kInteger: return integerOf(contents);
    case kReal: return realOf(contents);
    case kDate: return Date{.seconds = std::bit_cast<double>(bigEndian(contents))};
    case kUid: return Uid{.index = bigEndian(contents)};
    case kData: return Value::data(contents);
    case kAscii: return contents;
    case kUtf16: return fromUtf16(contents);
    case kList: return Value::list(items(object));
    case kSet: return Value::set(items(object));
    default: break;
  }
  std::vector<ValueMap::Entry> entries;
  entries.reserve(object.count);
  for (std::size_t i = 0; i < object.count; ++i) {
    entries.emplace_back(of(objects_.part(object, i)), of(objects_.part(object, object.count + i)));
  }
  return Value::map(ValueMap(std::move(entries), keys_));
}

ValueList Values::items(const Objects::Object& object) {
  ValueList items;
  items.reserve(object.count);
  for (std::size_t i = 0; i < object.count; ++i) items.push_back(of(objects_.part(object, i)));
  return items;
}

std::vector<Values::Entry> Values::entries(const Objects::Object& map) {
  std::vector<Entry> entries;
  ValuePlaces places(keys_);
  entries.reserve(map.count);
  for (std::size_t i = 0; i < map.count; ++i) {
    const std::size_t key = objects_.part(map, i);
    const std::size_t value = objects_.part(map, map.count + i);
    const std::size_t place = places.of(of(key), entries.size());
    if (place == entries.size()) {
      entries.emplace_back(key, value);
    } else {
      entries[place].second = value;
    }
  }
  return entries;
}

Decoded decode(std::string_view bytes) {
  Objects objects(bytes);
  if (!objects.check()) return {.value = std::nullopt, .error = objects.takeError()};
  return {.value = Values(objects).of(objects.top()), .error = {}};
}

}  // namespace tavlo::property_list
