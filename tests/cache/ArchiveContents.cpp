#include "tests/cache/ArchiveContents.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "tests/support/Python.h"

namespace tavlo::test {
namespace {

std::string hexBits(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  std::string bytes;
  for (unsigned shift = 64; shift > 0; shift -= 8) bytes.push_back(static_cast<char>(bits >> (shift - 8)));
  return toHex(bytes);
}

std::string joined(const std::vector<std::string>& parts) {
  std::string out;
  for (const std::string& part : parts) out += (out.empty() ? "" : ",") + part;
  return out;
}

std::vector<std::string> each(const ValueList& items) {
  std::vector<std::string> parts;
  for (const Value& item : items) parts.push_back(archiveContents(item));
  return parts;
}

std::vector<std::string> sorted(std::vector<std::string> parts) {
  std::sort(parts.begin(), parts.end());
  return parts;
}

std::string braces(const ValueMap& entries) {
  std::vector<std::string> parts;
  for (const auto& [key, value] : entries) parts.push_back(archiveContents(key) + "=" + archiveContents(value));
  return "{" + joined(sorted(parts)) + "}";
}

std::string url(const ValueUrl& url) {
  return "l" + toHex(url.text) + (url.base ? "(" + archiveContents(url.base) + ")" : "");
}

}  // namespace

std::string archiveContents(const std::optional<Value>& value) {
  if (!value) return "N";
  switch (value->kind()) {
    case Value::Kind::null: return "n";
    case Value::Kind::boolean: return *value->ifBoolean() ? "T" : "F";
    case Value::Kind::integer: return "i" + value->ifInteger()->decimal();
    case Value::Kind::real: return "r" + hexBits(value->ifReal()->value);
    case Value::Kind::date: return "d" + hexBits(value->ifDate()->seconds);
    case Value::Kind::text: return "t" + toHex(*value->ifText());
    case Value::Kind::data: return "b" + toHex(*value->ifData());
    case Value::Kind::uid: return value->ifUid()->index == 0 ? "N" : "a reference";
    case Value::Kind::url: return url(*value->ifUrl());
    case Value::Kind::list: return "[" + joined(each(*value->ifList())) + "]";
    case Value::Kind::set: return "<" + joined(sorted(each(*value->ifSet()))) + ">";
    case Value::Kind::map: return braces(*value->ifMap());
    case Value::Kind::object: break;
  }
  return "o" + toHex(value->ifObject()->className) + braces(value->ifObject()->fields);
}

}  // namespace tavlo::test
