// Value: one property-list value of any kind, and ValueMap, the map kind's container.
//
// Values   a Value is immutable; copying one shares its contents, so copies are cheap and what was shared
//          stays shared. Containers are built first and then wrapped (Value::list(...), Value::map(...)).
// Absent   a Value is never absent. Where one may be, the type is std::optional<Value>; Kind::null is a
//          value of its own (an archive's null object). A value that was moved from may only be assigned to
//          or destroyed.
// Order    total: kinds in the order of Kind, with integer and real ordered together by number. Numbers
//          that are equal order as integer, real, narrow real; a real that is no number comes before all
//          others. Text orders by code point, data by byte, lists item by item, sets and maps as their
//          sorted contents. Equal means equal in kind and content, to the bit; a true is never a 1.
// Nesting  comparing and destroying a value, and making a ValueMap with it as a key, take stack in proportion
//          to its nesting: tens of thousands of levels overflow it. Whoever builds values from foreign bytes
//          must bound their nesting.
// Threads  a Value may be read by any number of threads at once.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tavlo {

class Value;
class ValueMap;
class ValueNumbers;
struct ValueUrl;
struct ValueObject;

using ValueList = std::vector<Value>;

// A 128-bit two's-complement integer, as wide as a property list can hold.
struct Integer {
  std::int64_t high = 0;  // the sign, and what 64 bits cannot hold
  std::uint64_t low = 0;

  template <std::integral I>
  [[nodiscard]] static constexpr Integer of(I value) {
    return {.high = value < I{} ? std::int64_t{-1} : std::int64_t{0}, .low = static_cast<std::uint64_t>(value)};
  }
  [[nodiscard]] constexpr bool fitsSigned() const { return high == (static_cast<std::int64_t>(low) < 0 ? -1 : 0); }
  [[nodiscard]] constexpr bool fitsUnsigned() const { return high == 0; }
  [[nodiscard]] std::string decimal() const;

  friend constexpr bool operator==(const Integer&, const Integer&) = default;
  friend constexpr std::strong_ordering operator<=>(const Integer&, const Integer&) = default;
};

// A floating-point number; `narrow` marks one that was stored in 32 bits, so that it is stored so again.
struct Real {
  double value = 0;
  bool narrow = false;
};

// Seconds since 2001-01-01 00:00:00 UTC.
struct Date {
  double seconds = 0;
};

// A reference of a keyed archive to one of its objects.
struct Uid {
  std::uint64_t index = 0;
};

class Value {
 public:
  enum class Kind : std::uint8_t { null, boolean, integer, real, date, text, data, url, uid, list, set, map, object };

  Value() = default;               // null
  template <std::same_as<bool> B>  // nothing that merely converts to bool, above all no pointer
  Value(B value) : content_(value) {}
  template <std::integral I>
  requires(!std::same_as<I, bool>) Value(I value) : content_(Integer::of(value)) {}
  Value(double value) : content_(Real{.value = value}) {}
  Value(std::string text);
  Value(std::string_view text) : Value(std::string(text)) {}
  Value(const char* text) : Value(std::string(text)) {}
  Value(std::nullptr_t) = delete;
  Value(Integer value) : content_(value) {}
  Value(Real value) : content_(value) {}
  Value(Date value) : content_(value) {}
  Value(Uid value) : content_(value) {}

  [[nodiscard]] static Value data(std::string bytes);
  [[nodiscard]] static Value list(ValueList items);
  [[nodiscard]] static Value set(ValueList items);
  [[nodiscard]] static Value map(ValueMap entries);
  [[nodiscard]] static Value url(ValueUrl url);
  [[nodiscard]] static Value object(ValueObject object);

  [[nodiscard]] Kind kind() const { return static_cast<Kind>(content_.index()); }
  [[nodiscard]] bool isNull() const { return kind() == Kind::null; }

  // Each gives nullptr when the value is of another kind. The pointer lives as long as any copy of this
  // value does.
  [[nodiscard]] const bool* ifBoolean() const { return std::get_if<bool>(&content_); }
  [[nodiscard]] const Integer* ifInteger() const { return std::get_if<Integer>(&content_); }
  [[nodiscard]] const Real* ifReal() const { return std::get_if<Real>(&content_); }
  [[nodiscard]] const Date* ifDate() const { return std::get_if<Date>(&content_); }
  [[nodiscard]] const Uid* ifUid() const { return std::get_if<Uid>(&content_); }
  [[nodiscard]] const std::string* ifText() const { return held<Kind::text, std::string>(); }
  [[nodiscard]] const std::string* ifData() const { return held<Kind::data, std::string>(); }
  [[nodiscard]] const ValueUrl* ifUrl() const { return held<Kind::url, ValueUrl>(); }
  [[nodiscard]] const ValueList* ifList() const { return held<Kind::list, ValueList>(); }
  [[nodiscard]] const ValueList* ifSet() const { return held<Kind::set, ValueList>(); }
  [[nodiscard]] const ValueMap* ifMap() const { return held<Kind::map, ValueMap>(); }
  [[nodiscard]] const ValueObject* ifObject() const { return held<Kind::object, ValueObject>(); }

  // Where the shared contents lie: the same address means that the same contents are shared. nullptr for
  // kinds that hold their value in place.
  [[nodiscard]] const void* identity() const;

  // Shared contents are compared once, however often they are met.
  [[nodiscard]] friend bool operator==(const Value& a, const Value& b) { return (a <=> b) == 0; }
  friend std::strong_ordering operator<=>(const Value& a, const Value& b);

 private:
  template <class T>
  using Shared = std::shared_ptr<const T>;

  // In the order of Kind.
  using Content =
      std::variant<std::monostate, bool, Integer, Real, Date, Shared<std::string>, Shared<std::string>,
                   Shared<ValueUrl>, Uid, Shared<ValueList>, Shared<ValueList>, Shared<ValueMap>, Shared<ValueObject>>;

  template <Kind kind, class T>
  [[nodiscard]] const T* held() const {
    const Shared<T>* const shared = std::get_if<static_cast<std::size_t>(kind)>(&content_);
    return shared ? shared->get() : nullptr;
  }

  template <Kind kind, class T>
  [[nodiscard]] static Value holding(T contents);

  Content content_;
};

// Entries in the order in which their keys were first set. Two maps with the same entries in different
// order are equal.
class ValueMap {
 public:
  using Entry = std::pair<Value, Value>;

  ValueMap() = default;
  // Of several entries with one key the last one's value counts, at the first one's place. A maker of many
  // maps from one graph passes the same `numbers` to all, so that keys they share are looked into once.
  explicit ValueMap(std::vector<Entry> entries);
  ValueMap(std::vector<Entry> entries, ValueNumbers& numbers);
  ValueMap(std::initializer_list<Entry> entries) : ValueMap(std::vector<Entry>(entries)) {}

  // Adds the entry, or replaces the value under its key in place. Looks through all entries, as find() does.
  void set(Value key, Value value);
  // Adds an entry whose key is known to be new.
  void append(Value key, Value value) { entries_.emplace_back(std::move(key), std::move(value)); }

  [[nodiscard]] const Value* find(std::string_view key) const;

  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  [[nodiscard]] auto begin() const { return entries_.begin(); }
  [[nodiscard]] auto end() const { return entries_.end(); }
  void reserve(std::size_t count) { entries_.reserve(count); }

 private:
  std::vector<Entry> entries_;
};

// A URL as an archive holds it: its text, and the URL that a relative one builds on.
struct ValueUrl {
  std::string text;
  std::optional<Value> base;  // of Kind::url
};

// An object of a class that is known by name only.
struct ValueObject {
  std::string className;
  ValueMap fields;
};

}  // namespace tavlo
