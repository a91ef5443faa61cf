#include "common/ValueNumbers.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace tavlo {
namespace {

using Kind = Value::Kind;

// Fixed width, so that joined words stay apart.
std::string joined(std::initializer_list<std::uint64_t> words) {
  std::string bytes;
  for (const std::uint64_t word : words) {
    for (unsigned shift = 0; shift < 64; shift += 8) bytes.push_back(static_cast<char>(word >> shift));
  }
  return bytes;
}

std::string joinedInAnyOrder(std::vector<std::string> parts) {
  std::sort(parts.begin(), parts.end());
  std::string bytes;
  for (const std::string& part : parts) bytes += part;
  return bytes;
}

}  // namespace

std::size_t ValueNumbers::of(const Value& value) {
  const void* const identity = value.identity();
  if (const auto known = byIdentity_.find(identity); known != byIdentity_.end()) return known->second.second;
  std::string contents = contentsOf(value);
  const std::size_t number = byContents_.try_emplace(std::move(contents), byContents_.size()).first->second;
  if (identity) byIdentity_.try_emplace(identity, value, number);
  return number;
}

std::string ValueNumbers::contentsOf(const Value& value) {
  std::string kind(1, static_cast<char>(value.kind()));
  switch (value.kind()) {
    case Kind::null: return kind;
    case Kind::boolean: return kind + joined({*value.ifBoolean() ? 1U : 0U});
    case Kind::integer:
      return kind + joined({static_cast<std::uint64_t>(value.ifInteger()->high), value.ifInteger()->low});
    case Kind::real:
      return kind + joined({std::bit_cast<std::uint64_t>(value.ifReal()->value), value.ifReal()->narrow ? 1U : 0U});
    case Kind::date: return kind + joined({std::bit_cast<std::uint64_t>(value.ifDate()->seconds)});
    case Kind::text: return kind + *value.ifText();
    case Kind::data: return kind + *value.ifData();
    case Kind::uid: return kind + joined({value.ifUid()->index});
    case Kind::list: return kind + numbersOf(*value.ifList());
    case Kind::set: {
      std::vector<std::string> items;
      for (const Value& item : *value.ifSet()) items.push_back(joined({of(item)}));
      return kind + joinedInAnyOrder(std::move(items));
    }
    case Kind::map: return kind + numbersOf(*value.ifMap());
    case Kind::url: {
      const ValueUrl& url = *value.ifUrl();
      return kind + (url.base ? joined({1, of(*url.base)}) : joined({0})) + url.text;
    }
    case Kind::object: break;
  }
  const ValueObject& object = *value.ifObject();
  return std::string(1, static_cast<char>(Kind::object)) + joined({object.className.size()}) + object.className +
         numbersOf(object.fields);
}

std::string ValueNumbers::numbersOf(const ValueList& items) {
  std::string numbers;
  for (const Value& item : items) numbers += joined({of(item)});
  return numbers;
}

std::string ValueNumbers::numbersOf(const ValueMap& entries) {
  std::vector<std::string> pairs;
  pairs.reserve(entries.size());
  for (const auto& [key, value] : entries) pairs.push_back(joined({of(key), of(value)}));
  return joinedInAnyOrder(std::move(pairs));
}

}  // namespace tavlo
