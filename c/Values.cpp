#include <algorithm>
#include <unordered_map>
#include <vector>

#include "c/Boundary.h"
#include "cache/KeyedArchive.h"
#include "common/Format.h"
#include "common/PropertyList.h"

namespace tavlo::c {
namespace {

// How deep values are nested. Those that are there are not too deep, so that looking into them is bounded; what they
// share is looked into once.
class Nesting {
 public:
  [[nodiscard]] std::size_t of(const Value& value) {
    if (const ValueList* const list = value.ifList() ? value.ifList() : value.ifSet()) {
      return remembered(value, [&] { return ofItems(*list); });
    }
    if (const ValueMap* const map = value.ifMap()) {
      return remembered(value, [&] { return ofEntries(*map); });
    }
    if (const ValueObject* const object = value.ifObject()) {
      return remembered(value, [&] { return ofEntries(object->fields); });
    }
    if (const ValueUrl* const url = value.ifUrl()) {
      return remembered(value, [&] { return url->base ? of(*url->base) : 0; });
    }
    return 0;
  }

 private:
  template <class Inside>
  [[nodiscard]] std::size_t remembered(const Value& value, const Inside& inside) {
    const auto known = depths_.find(value.identity());
    if (known != depths_.end()) return known->second;
    return depths_[value.identity()] = 1 + inside();
  }
  [[nodiscard]] std::size_t ofItems(const ValueList& items) {
    std::size_t deepest = 0;
    for (const Value& item : items) deepest = std::max(deepest, of(item));
    return deepest;
  }
  [[nodiscard]] std::size_t ofEntries(const ValueMap& entries) {
    std::size_t deepest = 0;
    for (const auto& [key, value] : entries) deepest = std::max({deepest, of(key), of(value)});
    return deepest;
  }

  std::unordered_map<const void*, std::size_t> depths_;
};

// Before anything compares or hashes what is in them.
class Contents {
 public:
  const Value& add(const tavlo_value* handle, const char* what) {
    require(handle, what);
    if (nesting_.of(*valueOf(handle)) >= TAVLO_VALUE_DEEPEST) {
      throw Misuse(std::string(what) + " is nested deeper than " + std::to_string(TAVLO_VALUE_DEEPEST - 1) + " levels");
    }
    return *valueOf(handle);
  }

 private:
  Nesting nesting_;
};

ValueList itemsOf(const tavlo_value* const* items, std::size_t count) {
  if (count > 0) require(static_cast<const void*>(items), "the array of items");
  Contents contents;
  ValueList list;
  list.reserve(count);
  for (std::size_t i = 0; i < count; ++i) list.push_back(contents.add(items[i], "an item"));
  return list;
}

ValueMap entriesOf(const tavlo_value* const* keys, const tavlo_value* const* values, std::size_t count) {
  if (count > 0) require(static_cast<const void*>(keys), "the array of keys");
  if (count > 0) require(static_cast<const void*>(values), "the array of values");
  Contents contents;
  std::vector<ValueMap::Entry> entries;
  entries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Value& key = contents.add(keys[i], "a key");
    entries.emplace_back(key, contents.add(values[i], "a value"));
  }
  return ValueMap(std::move(entries));
}

Value urlOf(tavlo_text text, const tavlo_value* base) {
  ValueUrl url{.text = std::string(viewOf(text, "the text")), .base = {}};
  if (base) {
    if (valueOf(base)->kind() != Value::Kind::url) throw Misuse("the base must be a URL or a null pointer");
    url.base = Contents().add(base, "the base");
  }
  return Value::url(std::move(url));
}

Value objectOf(tavlo_text className, const tavlo_value* fields) {
  require(fields, "the map of fields");
  const ValueMap* const map = valueOf(fields)->ifMap();
  if (!map) throw Misuse("the fields must be a map");
  return Value::object({.className = std::string(viewOf(className, "the class name")), .fields = *map});
}

template <class Maker>
tavlo_value* madeValue(const char* function, const Maker& maker) noexcept {
  return made(function, [&] { return ownedHandle(maker()); });
}

Text encodedList(const tavlo_value* value) {
  require(value, "the value");
  auto bytes = property_list::encode(*valueOf(value));
  if (!bytes) {
    throw NoArchive("a property list holds no URL and no object of a class, and nothing nested deeper than " +
                    std::to_string(property_list::kDeepest) + " levels");
  }
  return bytes;
}

std::optional<Value> decodedList(tavlo_text bytes) {
  auto decoded = property_list::decode(viewOf(bytes, "the bytes"));
  if (!decoded.value) throw NoArchive(decoded.error);
  return std::move(decoded.value);
}

}  // namespace
}  // namespace tavlo::c

using tavlo::Value;
using tavlo::c::decodedList;
using tavlo::c::encodedList;
using tavlo::c::entriesOf;
using tavlo::c::givingText;
using tavlo::c::givingValue;
using tavlo::c::itemsOf;
using tavlo::c::madeValue;
using tavlo::c::objectOf;
using tavlo::c::optionalValue;
using tavlo::c::urlOf;
using tavlo::c::valueOf;
using tavlo::c::viewOf;

tavlo_value* tavlo_value_null(void) {
  return madeValue(__func__, [] { return Value(); });
}
tavlo_value* tavlo_value_from_boolean(bool boolean) {
  return madeValue(__func__, [=] { return Value(boolean); });
}
tavlo_value* tavlo_value_from_int64(int64_t integer) {
  return madeValue(__func__, [=] { return Value(integer); });
}
tavlo_value* tavlo_value_from_uint64(uint64_t integer) {
  return madeValue(__func__, [=] { return Value(integer); });
}
tavlo_value* tavlo_value_from_int128(int64_t high, uint64_t low) {
  return madeValue(__func__, [=] { return Value(tavlo::Integer{.high = high, .low = low}); });
}
tavlo_value* tavlo_value_from_double(double real) {
  return madeValue(__func__, [=] { return Value(real); });
}
tavlo_value* tavlo_value_from_float(float real) {
  return madeValue(__func__, [=] { return Value(tavlo::Real{.value = static_cast<double>(real), .narrow = true}); });
}
tavlo_value* tavlo_value_from_date(double seconds) {
  return madeValue(__func__, [=] { return Value(tavlo::Date{.seconds = seconds}); });
}
tavlo_value* tavlo_value_from_uid(uint64_t index) {
  return madeValue(__func__, [=] { return Value(tavlo::Uid{.index = index}); });
}
tavlo_value* tavlo_value_from_text(tavlo_text text) {
  return madeValue(__func__, [=] { return Value(viewOf(text, "the text")); });
}
tavlo_value* tavlo_value_from_data(tavlo_text bytes) {
  return madeValue(__func__, [=] { return Value::data(viewOf(bytes, "the bytes")); });
}
tavlo_value* tavlo_value_from_url(tavlo_text text, const tavlo_value* base) {
  return madeValue(__func__, [=] { return urlOf(text, base); });
}
tavlo_value* tavlo_value_from_list(const tavlo_value* const* items, size_t count) {
  return madeValue(__func__, [=] { return Value::list(itemsOf(items, count)); });
}
tavlo_value* tavlo_value_from_set(const tavlo_value* const* items, size_t count) {
  return madeValue(__func__, [=] { return Value::set(itemsOf(items, count)); });
}
tavlo_value* tavlo_value_from_map(const tavlo_value* const* keys, const tavlo_value* const* values, size_t count) {
  return madeValue(__func__, [=] { return Value::map(entriesOf(keys, values, count)); });
}
tavlo_value* tavlo_value_from_object(tavlo_text className, const tavlo_value* fields) {
  return madeValue(__func__, [=] { return objectOf(className, fields); });
}
tavlo_value* tavlo_value_copy(const tavlo_value* value) {
  return value ? madeValue(__func__, [=] { return *valueOf(value); }) : nullptr;
}
void tavlo_value_free(tavlo_value* value) { delete reinterpret_cast<Value*>(value); }

tavlo_status tavlo_value_text_form(const tavlo_value* value, tavlo_string* text) {
  return givingText(__func__, text, [=] {
    std::string form;
    tavlo::appendTextForm(form, optionalValue(value));
    return form;
  });
}
tavlo_status tavlo_archive_encode(const tavlo_value* root, tavlo_string* bytes) {
  return givingText(__func__, bytes, [=] { return tavlo::keyed_archive::encode(optionalValue(root)); });
}
tavlo_status tavlo_archive_decode(tavlo_text bytes, tavlo_value** root) {
  return givingValue(__func__, root, [=] { return tavlo::keyed_archive::decode(viewOf(bytes, "the bytes")); });
}
tavlo_status tavlo_property_list_encode(const tavlo_value* value, tavlo_string* bytes) {
  return givingText(__func__, bytes, [=] { return encodedList(value); });
}
tavlo_status tavlo_property_list_decode(tavlo_text bytes, tavlo_value** value) {
  return givingValue(__func__, value, [=] { return decodedList(bytes); });
}
