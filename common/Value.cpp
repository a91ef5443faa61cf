#include "common/Value.h"

#include <algorithm>
#include <unordered_map>

#include "common/ValueComparison.h"
#include "common/ValueNumbers.h"

namespace tavlo {

using Kind = Value::Kind;

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

ValueMap::ValueMap(const std::vector<Entry>& entries) {
  ValueNumbers numbers;
  *this = ValueMap(entries, numbers);
}

ValueMap::ValueMap(const std::vector<Entry>& entries, ValueNumbers& numbers) {
  std::unordered_map<std::size_t, std::size_t> places;
  entries_.reserve(entries.size());
  for (const auto& [key, value] : entries) {
    const auto [place, isNew] = places.try_emplace(numbers.of(key), entries_.size());
    if (isNew) {
      entries_.emplace_back(key, value);
    } else {
      entries_[place->second].second = value;
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
