// Reading what a case gives: members that may be missing, and what they hold.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "common/Text.h"
#include "common/Value.h"

namespace tavlo::conformance {

// nullptr: there is no such member, or `value` is no map.
[[nodiscard]] inline const Value* member(const Value& value, std::string_view name) {
  const ValueMap* const map = value.ifMap();
  return map ? map->find(name) : nullptr;
}

// What a map or a list holds; nothing where the value is missing or null. They stay as long as the value does.
[[nodiscard]] inline const ValueMap& entriesOf(const Value* value) {
  static const ValueMap kNone;
  return value && value->ifMap() ? *value->ifMap() : kNone;
}
[[nodiscard]] inline const ValueList& itemsOf(const Value* value) {
  static const ValueList kNone;
  return value && value->ifList() ? *value->ifList() : kNone;
}

[[nodiscard]] inline Text textOf(const Value* value) {
  const auto text = value ? value->ifText() : std::nullopt;
  return text ? Text(*text) : std::nullopt;
}

[[nodiscard]] inline bool truthOf(const Value* value, bool otherwise) {
  return value && value->ifBoolean() ? *value->ifBoolean() : otherwise;
}

[[nodiscard]] inline std::int64_t integerOf(const Value* value, std::int64_t otherwise = 0) {
  return value && value->ifInteger() ? static_cast<std::int64_t>(value->ifInteger()->low) : otherwise;
}

[[nodiscard]] inline double numberOf(const Value& value) {
  return value.ifReal() ? value.ifReal()->value : static_cast<double>(integerOf(&value));
}

// A file's or a body's bytes: a text, or {"hex": "..."}.
[[nodiscard]] inline std::string bytesOf(const Value& value) {
  if (const auto text = value.ifText()) return std::string(*text);
  const Text digits = textOf(member(value, "hex"));
  if (!digits) throw std::runtime_error("bytes are a text or {\"hex\": \"...\"}");
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits->size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits->substr(i, 2), nullptr, 16));
  }
  return bytes;
}

}  // namespace tavlo::conformance
