#include "tests/conformance/Json.h"

#include <nlohmann/json.hpp>

#include <array>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "tests/conformance/Places.h"

namespace tavlo::conformance {
namespace {

using nlohmann::json;

constexpr double kSecondsFrom1970To2001 = 978307200;

std::string withPlaces(std::string text) {
  constexpr auto kNames = std::to_array<std::pair<std::string_view, std::string_view>>(
      {{"${documents}", kDocuments}, {"${documentsUrl}", kDocumentsUrl}, {"${resources}", kResources}});
  for (const auto& [name, place] : kNames) {
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + place.size())) {
      text.replace(at, name.size(), place);
    }
  }
  return text;
}

Value valueOf(const json& given);

Value mapOf(const json& given) {
  if (given.size() == 1 && given.contains("$date")) {
    return Date{.seconds = given.at("$date").get<double>() - kSecondsFrom1970To2001};
  }
  ValueMap map;
  for (const auto& [key, value] : given.items()) map.set(withPlaces(key), valueOf(value));
  return Value::map(std::move(map));
}

Value valueOf(const json& given) {
  if (given.is_object()) return mapOf(given);
  if (given.is_string()) return withPlaces(given.get<std::string>());
  if (given.is_boolean()) return given.get<bool>();
  if (given.is_number_unsigned()) return given.get<std::uint64_t>();
  if (given.is_number_integer()) return given.get<std::int64_t>();
  if (given.is_number_float()) return given.get<double>();
  if (given.is_null()) return {};
  ValueList items;
  for (const json& item : given) items.push_back(valueOf(item));
  return Value::list(std::move(items));
}

json jsonOf(const Value& value) {
  if (const auto text = value.ifText()) return std::string(*text);
  if (const bool* const truth = value.ifBoolean()) return *truth;
  if (const Integer* const number = value.ifInteger()) return static_cast<std::int64_t>(number->low);
  if (const Real* const number = value.ifReal()) return number->value;
  if (const Date* const date = value.ifDate()) return json{{"$date", date->seconds + kSecondsFrom1970To2001}};
  if (const ValueList* const items = value.ifList()) {
    json list = json::array();
    for (const Value& item : *items) list.push_back(jsonOf(item));
    return list;
  }
  if (const ValueMap* const entries = value.ifMap()) {
    json map = json::object();
    for (const auto& [key, entry] : *entries) map[std::string(key.ifText().value_or("(no text)"))] = jsonOf(entry);
    return map;
  }
  return value.isNull() ? json() : json("(another kind)");
}

}  // namespace

Value readFile(const std::string& path) try {
  std::ifstream file(path, std::ios::binary);
  return valueOf(json::parse(file));
} catch (const json::exception& error) {
  throw std::runtime_error(path + ": " + error.what());
}

std::optional<Value> parsed(std::string_view text) {
  const json value = json::parse(text, nullptr, false);
  return value.is_discarded() ? std::nullopt : std::optional(valueOf(value));
}

std::string shown(const Value& value) { return jsonOf(value).dump(-1, ' ', false, json::error_handler_t::replace); }

}  // namespace tavlo::conformance
