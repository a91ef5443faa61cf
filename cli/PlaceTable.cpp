#include "cli/PlaceTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

#include "cli/Input.h"
#include "cli/JsonReader.h"

namespace tavlo::cli {
namespace {

using platform::Placemark;
using Kind = JsonNode::Kind;

struct Field {
  std::string_view key;
  Text Placemark::*place;
};

constexpr auto kFields = std::to_array<Field>({
    {"ISOcountryCode", &Placemark::ISOcountryCode},
    {"country", &Placemark::country},
    {"postalCode", &Placemark::postalCode},
    {"administrativeArea", &Placemark::administrativeArea},
    {"locality", &Placemark::locality},
    {"subLocality", &Placemark::subLocality},
    {"thoroughfare", &Placemark::thoroughfare},
});

double asDouble(const Integer& integer) {
  if (integer.fitsSigned()) return static_cast<double>(static_cast<std::int64_t>(integer.low));
  return std::ldexp(static_cast<double>(integer.high), 64) + static_cast<double>(integer.low);
}

class Reader : private JsonReader {
 public:
  using JsonReader::JsonReader;

  [[nodiscard]] PlaceTable read(const JsonNode& document) const;

 private:
  struct Range {
    double least;
    double most;
    const char* text;
  };
  static constexpr Range kLatitudes{-90, 90, "a number from -90 to 90"};
  static constexpr Range kLongitudes{-180, 180, "a number from -180 to 180"};
  static constexpr Range kDistances{0, std::numeric_limits<double>::max(), "a number of metres, 0 or more"};

  [[nodiscard]] host::TableGeocoder::Place placeOf(const JsonNode& node, const std::string& path) const;
  [[nodiscard]] double numberOf(const JsonNode& node, const std::string& path, const Range& range) const;
};

PlaceTable Reader::read(const JsonNode& document) const {
  PlaceTable table;
  bool hasPlaces = false;
  const auto take = [&](const JsonMember& member, const std::string& path) {
    if (member.key == "about") return true;  // the file's comment, of any kind
    if (member.key == "within") {
      if (member.value.kind != Kind::null) table.within = numberOf(member.value, path, kDistances);
      return true;
    }
    if (member.key != "places") return false;
    if (member.value.kind != Kind::list) failKind(member.value, path, "a list of places");
    for (const JsonNode& item : member.value.items) {
      table.places.push_back(placeOf(item, path + "[" + std::to_string(table.places.size()) + "]"));
    }
    return hasPlaces = true;
  };
  readObject(document, "", "places, within or about", take);
  if (!hasPlaces) fail(document.line, "", "\"places\" is missing, expected a list of places");
  return table;
}

host::TableGeocoder::Place Reader::placeOf(const JsonNode& node, const std::string& path) const {
  std::optional<double> latitude;
  std::optional<double> longitude;
  host::TableGeocoder::Place place;
  const auto take = [&](const JsonMember& member, const std::string& memberPath) {
    if (member.key == "latitude") {
      latitude = numberOf(member.value, memberPath, kLatitudes);
    } else if (member.key == "longitude") {
      longitude = numberOf(member.value, memberPath, kLongitudes);
    } else {
      const auto isNamed = [&](const Field& field) { return field.key == member.key; };
      const auto* const field = std::find_if(kFields.begin(), kFields.end(), isNamed);
      if (field == kFields.end()) return false;
      place.placemark.*field->place = textOf(member.value, memberPath);
    }
    return true;
  };
  readObject(node, path, "latitude, longitude or a field of a placemark", take);
  if (!latitude) fail(node.line, path, "\"latitude\" is missing");
  if (!longitude) fail(node.line, path, "\"longitude\" is missing");
  place.coordinate = {.latitude = *latitude, .longitude = *longitude};
  return place;
}

double Reader::numberOf(const JsonNode& node, const std::string& path, const Range& range) const {
  if (node.kind != Kind::integer && node.kind != Kind::real) failKind(node, path, range.text);
  const double number = node.kind == Kind::real ? node.scalar.ifReal()->value : asDouble(*node.scalar.ifInteger());
  if (number >= range.least && number <= range.most) return number;
  fail(node.line, path, "expected " + std::string(range.text) + ", got " + toJson(node.scalar));
}

}  // namespace

PlaceTable parsePlaceTable(std::string_view document, const std::string& name) {
  return Reader(name).read(parseJsonOf(name, document));
}

PlaceTable readPlaceTable(const std::string& path) {
  return parsePlaceTable(readInput(path, kLongestPlaceTable), inputName(path));
}

}  // namespace tavlo::cli
