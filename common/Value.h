// Value: one property-list value of any kind, and ValueMap, the map kind's container.
//
// Values   a Value is immutable; copying one shares its contents, so copies are cheap and what was shared
//          stays shared. Containers are built first and then wrapped (Value::list(...), Value::map(...)).
//          Numbers, dates and references lie in the value itself, and so do texts and data of up to 22 bytes;
//          a longer one takes one allocation, a literal none.
// Absent   a Value is never absent. Where one may be, the type is std::optional<Value>; Kind::null is a
//          value of its own (an archive's null object). A value that was moved from is null.
// Order    total: kinds in the order of Kind, with integer and real ordered together by number. Numbers
//          that are equal order as integer, real, narrow real; a real that is no number comes before all
//          others. Text orders by code point, data by byte, lists item by item, sets and maps as their
//          sorted contents. Equal means equal in kind and content, to the bit; a true is never a 1.
// Nesting  comparing a value, and making a ValueMap with it as a key, take stack in proportion to its nesting:
//          tens of thousands of levels overflow it. Whoever builds values from foreign bytes must bound their
//          nesting. Copying and destroying take none.
// Threads  a Value may be read and copied by any number of threads at once, and copies of one destroyed.
#pragma once

#include <atomic>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
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
  Value(B value) : Value(Kind::boolean, value) {}
  template <std::integral I>
  requires(!std::same_as<I, bool>) Value(I value) : Value(Integer::of(value)) {}
  Value(double value) : Value(Real{.value = value}) {}
  Value(std::string_view text) : Value(Kind::text, text) {}
  Value(const std::string& text) : Value(std::string_view(text)) {}
  Value(const char* text) : Value(std::string_view(text)) {}
  Value(std::nullptr_t) = delete;
  Value(Integer value) : Value(Kind::integer, value) {}
  Value(Real value) : Value(Kind::real, value) {}
  Value(Date value) : Value(Kind::date, value) {}
  Value(Uid value) : Value(Kind::uid, value) {}

  Value(const Value& other) : content_(other.content_) {
    if (isCounted()) ownersOf(as<Held>().contents).fetch_add(1, std::memory_order_relaxed);
  }
  Value(Value&& other) noexcept : content_(other.content_) { other.forget(); }
  Value& operator=(const Value& other) { return *this = Value(other); }
  Value& operator=(Value&& other) noexcept;
  ~Value() {
    if (isCounted()) release();
  }

  // A text that outlives all values, such as a literal: it is neither copied nor counted.
  [[nodiscard]] static Value literal(std::string_view text);
  [[nodiscard]] static Value data(std::string_view bytes) { return {Kind::data, bytes}; }
  [[nodiscard]] static Value list(ValueList items);
  [[nodiscard]] static Value set(ValueList items);
  [[nodiscard]] static Value map(ValueMap entries);
  [[nodiscard]] static Value url(ValueUrl url);
  [[nodiscard]] static Value object(ValueObject object);

  [[nodiscard]] Kind kind() const { return content_.kind; }
  [[nodiscard]] bool isNull() const { return kind() == Kind::null; }
  [[nodiscard]] bool isText() const { return kind() == Kind::text; }
  [[nodiscard]] bool isData() const { return kind() == Kind::data; }

  // Each gives nullptr, or nothing, when the value is of another kind. What a pointer or a view leads to stays until
  // this value is assigned to, moved from or destroyed; a container stays as long as any copy of this value does.
  [[nodiscard]] const bool* ifBoolean() const { return inPlace<Kind::boolean, bool>(); }
  [[nodiscard]] const Integer* ifInteger() const { return inPlace<Kind::integer, Integer>(); }
  [[nodiscard]] const Real* ifReal() const { return inPlace<Kind::real, Real>(); }
  [[nodiscard]] const Date* ifDate() const { return inPlace<Kind::date, Date>(); }
  [[nodiscard]] const Uid* ifUid() const { return inPlace<Kind::uid, Uid>(); }
  [[nodiscard]] std::optional<std::string_view> ifText() const { return bytesOf(Kind::text); }
  [[nodiscard]] std::optional<std::string_view> ifData() const { return bytesOf(Kind::data); }
  [[nodiscard]] const ValueUrl* ifUrl() const { return held<Kind::url, ValueUrl>(); }
  [[nodiscard]] const ValueList* ifList() const { return held<Kind::list, ValueList>(); }
  [[nodiscard]] const ValueList* ifSet() const { return held<Kind::set, ValueList>(); }
  [[nodiscard]] const ValueMap* ifMap() const { return held<Kind::map, ValueMap>(); }
  [[nodiscard]] const ValueObject* ifObject() const { return held<Kind::object, ValueObject>(); }

  // Where the shared contents lie: the same address means that the same contents are shared. nullptr for
  // what lies in the value itself, and for literals.
  [[nodiscard]] const void* identity() const { return isCounted() ? as<Held>().contents : nullptr; }

  // Shared contents are compared once, however often they are met.
  [[nodiscard]] friend bool operator==(const Value& a, const Value& b) { return (a <=> b) == 0; }
  friend std::strong_ordering operator<=>(const Value& a, const Value& b);

 private:
  static constexpr std::size_t kLongestInPlace = 22;
  static constexpr std::uint8_t kLiteral = 0xFE;
  static constexpr std::uint8_t kCounted = 0xFF;

  // One of what follows, by its kind: a plain value; up to 22 bytes of text or data; a Held.
  struct Content {
    alignas(std::uint64_t) unsigned char bytes[kLongestInPlace] = {};
    std::uint8_t length = 0;  // of bytes in place; kLiteral or kCounted when they, or a container, lie elsewhere
    Kind kind = Kind::null;
  };

  // Contents that lie elsewhere.
  struct Held {
    const void* contents = nullptr;
    std::size_t size = 0;  // of a text or data
  };
  class Dead;

  template <class T>
  Value(Kind kind, T value) {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= kLongestInPlace);
    new (content_.bytes) T(value);
    content_.kind = kind;
  }
  Value(Kind kind, std::string_view bytes);
  [[nodiscard]] static void* room(std::size_t size);
  void hold(Kind kind, std::uint8_t length, Held held);
  template <class T>
  [[nodiscard]] static Value holding(Kind kind, T contents);

  template <class T>
  [[nodiscard]] const T& as() const {
    return *std::launder(reinterpret_cast<const T*>(content_.bytes));
  }
  template <Kind kind, class T>
  [[nodiscard]] const T* inPlace() const {
    return this->kind() == kind ? &as<T>() : nullptr;
  }
  template <Kind kind, class T>
  [[nodiscard]] const T* held() const {
    return this->kind() == kind ? static_cast<const T*>(as<Held>().contents) : nullptr;
  }
  [[nodiscard]] std::optional<std::string_view> bytesOf(Kind kind) const {
    if (this->kind() != kind) return std::nullopt;
    if (content_.length > kLongestInPlace) {
      return std::string_view(static_cast<const char*>(as<Held>().contents), as<Held>().size);
    }
    return std::string_view(reinterpret_cast<const char*>(content_.bytes), content_.length);
  }

  // Counted contents are kept by their owners, and have the number of them right before them.
  using Owners = std::atomic<std::size_t>;
  [[nodiscard]] bool isCounted() const { return content_.length == kCounted; }
  [[nodiscard]] static Owners& ownersOf(const void* contents) {
    return const_cast<Owners*>(static_cast<const Owners*>(contents))[-1];
  }
  void forget() {
    content_.length = 0;
    content_.kind = Kind::null;
  }
  void release() noexcept;
  void leave(Dead& dead) noexcept;

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

  // Of entries whose keys are known to be different.
  [[nodiscard]] static ValueMap ofDistinct(std::vector<Entry> entries);

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
  friend class Value;

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
