#include "location/Address.h"

#include <array>
#include <string_view>

#include "common/Utf8.h"

namespace tavlo {
namespace {

using platform::Placemark;

struct Escape {
  char32_t codePoint;
  std::string_view text;
};

constexpr auto kEscapes = std::to_array<Escape>({
    {'"', R"(\")"},
    {'\\', R"(\\)"},
    {'/', R"(\/)"},
    {'\b', R"(\b)"},
    {'\f', R"(\f)"},
    {'\n', R"(\n)"},
    {'\r', R"(\r)"},
    {'\t', R"(\t)"},
});

constexpr char32_t kReplacement = 0xFFFD;

void appendCharacter(std::string& out, char32_t codePoint) {
  for (const Escape& escape : kEscapes) {
    if (escape.codePoint == codePoint) {
      out += escape.text;
      return;
    }
  }
  if (codePoint >= 0x20) return appendUtf8(out, codePoint);
  constexpr std::string_view kDigits = "0123456789abcdef";
  out.append("\\u00").append({kDigits[codePoint >> 4U], kDigits[codePoint & 15U]});
}

void appendString(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint next = decodeUtf8(text, at);
    appendCharacter(out, next.valid ? next.value : kReplacement);
    at += next.length;
  }
  out += '"';
}

}  // namespace

std::string addressJson(const Placemark* placemark) {
  std::string json = "{";
  for (const auto& [key, fieldName, field] : kAddressMembers) {
    if (!placemark || !(placemark->*field)) continue;
    if (json.size() > 1) json += ',';
    appendString(json, key);
    json += ':';
    appendString(json, *(placemark->*field));
  }
  return json += '}';
}

}  // namespace tavlo
