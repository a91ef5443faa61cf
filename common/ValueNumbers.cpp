#include "common/ValueNumbers.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace tavlo {
namespace {

using Kind = Value::Kind;

// Fixed width, so that joined words stay apart.
void append(std::string& contents, std::uint64_t word) {
  for (unsigned shift = 0; shift < 64; shift += 8) contents.push_back(static_cast<char>(word >> shift));
}

// By a heap, which is half the code of std::sort().
void appendInAnyOrder(std::string& contents, std::vector<std::pair<std::size_t, std::size_t>> pairs) {
  std::make_heap(pairs.begin(), pairs.end());
  std::sort_heap(pairs.begin(), pairs.end());
  for (const auto& [first, second] : pairs) {
    append(contents, first);
    append(contents, second);
  }
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

std::size_t ValuePlaces::of(const Value& key, std::size_t next) {
  return places_.try_emplace(numbers_.of(key), next).first->second;
}

std::string ValueNumbers::contentsOf(const Value& value) {
  std::string contents(1, static_cast<char>(value.kind()));
  switch (value.kind()) {
    case Kind::null: break;
    case Kind::boolean: append(contents, *value.ifBoolean() ? 1 : 0); break;
    case Kind::integer:
      append(contents, static_cast<std::uint64_t>(value.ifInteger()->high));
      append(contents, value.ifInteger()->low);
      break;
    case Kind::real:
      append(contents, std::bit_cast<std::uint64_t>(value.ifReal()->value));
      append(contents, value.ifReal()->narrow ? 1 : 0);
      break;
    case Kind::date: append(contents, std::bit_cast<std::uint64_t>(value.ifDate()->seconds)); break;
    case Kind::text: contents += *value.ifText(); break;
    case Kind::data: contents += *value.ifData(); break;
    case Kind::uid: append(contents, value.ifUid()->index); break;
    case Kind::list:
      for (const Value& item : *value.ifList()) append(contents, of(item));
      break;
    case Kind::set: appendSet(contents, *value.ifSet()); break;
    case Kind::map: appendMap(contents, *value.ifMap()); break;
    case Kind::url: {
      const ValueUrl& url = *value.ifUrl();
      append(contents, url.base ? 1 : 0);
      if (url.base) append(contents, of(*url.base));
      contents += url.text;
      break;
    }
    case Kind::object: {
      const ValueObject& object = *value.ifObject();
      append(contents, object.className.size());
      contents += object.className;
      appendMap(contents, object.fields);
      break;
    }
  }
  return contents;
}

void ValueNumbers::appendSet(std::string& contents, const ValueList& items) {
  std::vector<std::pair<std::size_t, std::size_t>> numbers;
  numbers.reserve(items.size());
  for (const Value& item : items) numbers.emplace_back(of(item), 0);
  appendInAnyOrder(contents, std::move(numbers));
}

void ValueNumbers::appendMap(std::string& contents, const ValueMap& entries) {
  std::vector<std::pair<std::size_t, std::size_t>> numbers;
  numbers.reserve(entries.size());
  for (const auto& [key, value] : entries) {
    const std::size_t keyNumber = of(key);
    numbers.emplace_back(keyNumber, of(value));
  }
  appendInAnyOrder(contents, std::move(numbers));
}

}  // namespace tavlo
