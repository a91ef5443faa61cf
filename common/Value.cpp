#include "common/Value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <string_view>

#include "common/ValueComparison.h"
#include "common/ValueNumbers.h"

namespace tavlo {

using Kind = Value::Kind;

namespace {

// What nearly all maps have for keys is found to be so without numbers. Long texts could be made to cost, and so could
// those that collide in a hash table: both are left to the numbers.
bool haveDistinctShortTexts(const std::vector<ValueMap::Entry>& entries) {
  constexpr std::size_t kShort = 64;
  std::vector<const Value*> table(std::bit_ceil(2 * entries.size() + 1));
  std::size_t collisions = 0;
  for (const auto& [key, value] : entries) {
    const auto text = key.ifText();
    if (!text || text->size() > kShort) return false;
    std::size_t place = std::hash<std::string_view>()(*text) & (table.size() - 1);
    for (; table[place]; place = (place + 1) & (table.size() - 1)) {
      if (table[place]->ifText() == text || ++collisions > 4 * entries.size()) return false;
    }
    table[place] = &key;
  }
  return true;
}

}  // namespace

std::string Integer::decimal() const {
  // Schoolbook division by ten over four 32-bit digits of the magnitude.
  auto top = static_cast<std::uint64_t>(high);
  std::uint64_t bottom = low;
  const bool negative = high < 0;
  if (negative) {
    bottom = ~bottom + 1;
    top = ~top + (bottom == 0 ? 1 : 0);
  }
  std::string digits;
  while (top != 0 || bottom != 0) {
    std::uint64_t remainder = 0;
    for (std::uint64_t* const word : {&top, &bottom}) {
      const std::uint64_t upper = (remainder << 32U) | (*word >> 32U);
      const std::uint64_t lower = ((upper % 10) << 32U) | (*word & 0xFFFFFFFFU);
      *word = ((upper / 10) << 32U) | (lower / 10);
      remainder = lower % 10;
    }
    digits.push_back(static_cast<char>('0' + remainder));
  }
  if (digits.empty()) digits.push_back('0');
  if (negative) digits.push_back('-');
  std::reverse(digits.begin(), digits.end());
  return digits;
}

// Contents without owners, by their kind. Where the number of owners stood there is now a pointer to the next of them.
class Value::Dead {
  static_assert(sizeof(Owners) == sizeof(const void*) && std::is_trivially_destructible_v<Owners>);

 public:
  void add(Kind kind, const void* contents) {
    const void*& first = first_[placeOf(kind)];
    new (&ownersOf(contents)) const void*(first);
    first = contents;
  }

  // One after the other, not one inside the other, however deep they lay.
  void bury() noexcept {
    while (buryOne<ValueList>(Kind::list) || buryOne<ValueMap>(Kind::map) || buryOne<ValueObject>(Kind::object) ||
           buryOne<ValueUrl>(Kind::url)) {
    }
  }

  static void free(const void* contents) { ::operator delete(&ownersOf(contents)); }

 private:
  static std::size_t placeOf(Kind kind) { return static_cast<std::size_t>(kind) - static_cast<std::size_t>(Kind::url); }

  template <class T>
  bool buryOne(Kind kind) {
    const void*& first = first_[placeOf(kind)];
    if (!first) return false;
    T* const contents = static_cast<T*>(const_cast<void*>(first));
    first = *std::launder(reinterpret_cast<const void**>(&ownersOf(first)));
    leaveParts(*contents);
    contents->~T();
    free(contents);
    return true;
  }

  void leaveParts(ValueList& items) {
    for (Value& item : items) item.leave(*this);
  }
  void leaveParts(ValueMap& map) {
    for (auto& [key, value] : map.entries_) {
      key.leave(*this);
      value.leave(*this);
    }
  }
  void leaveParts(ValueObject& object) { leaveParts(object.fields); }
  void leaveParts(ValueUrl& url) {
    if (url.base) url.base->leave(*this);
  }

  std::array<const void*, 6> first_{};
};

Value& Value::operator=(Value&& other) noexcept {
  const Content content = other.content_;
  other.forget();
  if (isCounted()) release();
  content_ = content;
  return *this;
}

void Value::release() noexcept {
  Dead dead;
  leave(dead);
  dead.bury();
}

// Without owners, contents are freed at once when they have no parts.
void Value::leave(Dead& dead) noexcept {
  if (isCounted()) {
    const void* const contents = as<Held>().contents;
    Owners& owners = ownersOf(contents);
    // The only owner needs no exchange: nobody else can make it two.
    if (owners.load(std::memory_order_acquire) == 1 || owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      if (isText() || isData()) {
        Dead::free(contents);
      } else {
        dead.add(kind() == Kind::set ? Kind::list : kind(), contents);
      }
    }
  }
  forget();
}

// Room behind the number of owners, which is one.
void* Value::room(std::size_t size) {
  auto* const owners = new (::operator new(sizeof(Owners) + size)) Owners(1);
  return owners + 1;
}

void Value::hold(Kind kind, std::uint8_t length, Held held) {
  new (content_.bytes) Held(held);
  content_.length = length;
  content_.kind = kind;
}

Value::Value(Kind kind, std::string_view bytes) {
  if (bytes.size() <= kLongestInPlace) {
    std::copy(bytes.begin(), bytes.end(), content_.bytes);
    content_.length = static_cast<std::uint8_t>(bytes.size());
    content_.kind = kind;
    return;
  }
  void* const contents = room(bytes.size());
  std::memcpy(contents, bytes.data(), bytes.size());
  hold(kind, kCounted, {.contents = contents, .size = bytes.size()});
}

Value Value::literal(std::string_view text) {
  if (text.size() <= kLongestInPlace) return text;
  Value value;
  value.hold(Kind::text, kLiteral, {.contents = text.data(), .size = text.size()});
  return value;
}

template <class T>
Value Value::holding(Kind kind, T contents) {
  static_assert(alignof(T) <= alignof(Owners));
  Value value;
  value.hold(kind, kCounted, {.contents = new (room(sizeof(T))) T(std::move(contents))});
  return value;
}

Value Value::list(ValueList items) { return holding(Kind::list, std::move(items)); }
Value Value::set(ValueList items) { return holding(Kind::set, std::move(items)); }
Value Value::map(ValueMap entries) { return holding(Kind::map, std::move(entries)); }
Value Value::url(ValueUrl url) { return holding(Kind::url, std::move(url)); }
Value Value::object(ValueObject object) { return holding(Kind::object, std::move(object)); }

std::strong_ordering operator<=>(const Value& a, const Value& b) { return ValueComparison().compare(a, b); }

ValueMap::ValueMap(std::vector<Entry> entries) {
  ValueNumbers numbers;
  *this = ValueMap(std::move(entries), numbers);
}

ValueMap ValueMap::ofDistinct(std::vector<Entry> entries) {
  ValueMap map;
  map.entries_ = std::move(entries);
  return map;
}

ValueMap::ValueMap(std::vector<Entry> entries, ValueNumbers& numbers) {
  if (haveDistinctShortTexts(entries)) {
    entries_ = std::move(entries);
    return;
  }
  ValuePlaces places(numbers);
  std::size_t count = 0;
  for (Entry& entry : entries) {
    const std::size_t place = places.of(entry.first, count);
    if (place < count) {
      entries[place].second = std::move(entry.second);
    } else if (&entry != &entries[count++]) {
      entries[place] = std::move(entry);
    }
  }
  entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(count), entries.end());
  entries_ = std::move(entries);
}

void ValueMap::set(Value key, Value value) {
  const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.first == key; });
  if (entry != entries_.end()) {
    entry->second = std::move(value);
  } else {
    append(std::move(key), std::move(value));
  }
}

const Value* ValueMap::find(std::string_view key) const {
  for (const auto& [entryKey, value] : entries_) {
    if (entryKey.ifText() == key) return &value;
  }
  return nullptr;
}

}  // namespace tavlo
