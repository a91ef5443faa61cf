#include "common/Value.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <string_view>
#include <unordered_map>

#include "common/ValueComparison.h"
#include "common/ValueNumbers.h"

namespace tavlo {

using Kind = Value::Kind;

namespace {

// What nearly all maps have for keys is found to be so without numbers. Long texts could be made to cost, and so could
// those that collide in a hash table: both are left to the numbers.
bool haveDistinctShortTexts(const std::vector<ValueMap::Entry>& entries) {
  constexpr std::size_t kShort = 64;
  std::vector<const std::string*> table(std::bit_ceil(2 * entries.size() + 1));
  std::size_t collisions = 0;
  for (const auto& [key, value] : entries) {
    const std::string* const text = key.ifText();
    if (!text || text->size() > kShort) return false;
    std::size_t place = std::hash<std::string_view>()(*text) & (table.size() - 1);
    for (; table[place]; place = (place + 1) & (table.size() - 1)) {
      if (*table[place] == *text || ++collisions > 4 * entries.size()) return false;
    }
    table[place] = text;
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

template <Value::Kind kind, class T>
Value Value::holding(T contents) {
  Value value;
  value.content_.emplace<static_cast<std::size_t>(kind)>(std::make_shared<const T>(std::move(contents)));
  return value;
}

Value::Value(std::string text) : Value(holding<Kind::text>(std::move(text))) {}

Value Value::data(std::string bytes) { return holding<Kind::data>(std::move(bytes)); }
Value Value::list(ValueList items) { return holding<Kind::list>(std::move(items)); }
Value Value::set(ValueList items) { return holding<Kind::set>(std::move(items)); }
Value Value::map(ValueMap entries) { return holding<Kind::map>(std::move(entries)); }
Value Value::url(ValueUrl url) { return holding<Kind::url>(std::move(url)); }
Value Value::object(ValueObject object) { return holding<Kind::object>(std::move(object)); }

const void* Value::identity() const {
  return std::visit(
      [](const auto& content) -> const void* {
        if constexpr (requires { content.get(); }) {
          return content.get();
        } else {
          return nullptr;
        }
      },
      content_);
}

std::strong_ordering operator<=>(const Value& a, const Value& b) { return ValueComparison().compare(a, b); }

ValueMap::ValueMap(std::vector<Entry> entries) {
  ValueNumbers numbers;
  *this = ValueMap(std::move(entries), numbers);
}

ValueMap::ValueMap(std::vector<Entry> entries, ValueNumbers& numbers) {
  if (haveDistinctShortTexts(entries)) {
    entries_ = std::move(entries);
    return;
  }
  std::unordered_map<std::size_t, std::size_t> places;
  entries_.reserve(entries.size());
  for (Entry& entry : entries) {
    const auto [place, isNew] = places.try_emplace(numbers.of(entry.first), entries_.size());
    if (isNew) {
      entries_.push_back(std::move(entry));
    } else {
      entries_[place->second].second = std::move(entry.second);
    }
  }
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
    if (const std::string* text = entryKey.ifText(); text && *text == key) return &value;
  }
  return nullptr;
}

}  // namespace tavlo
