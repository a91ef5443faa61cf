#include "request/UrlEncode.h"

#include <array>

namespace tavlo {
namespace {

constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

constexpr auto kIsUnreserved = [] {
  std::array<bool, 256> table{};
  for (const char c : kUnreserved) table[static_cast<unsigned char>(c)] = true;
  return table;
}();

bool isUnreserved(char c) { return kIsUnreserved[static_cast<unsigned char>(c)]; }

void appendEscape(std::string& out, char c) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(c);
  const char escape[] = {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
  out.append(escape, sizeof escape);
}

}  // namespace

void appendUrlEncoded(std::string& out, std::string_view value) {
  // Stretches that stay are appended whole.
  std::size_t at = 0;
  while (at < value.size()) {
    const std::size_t start = at;
    while (at < value.size() && isUnreserved(value[at])) ++at;
    out.append(value, start, at - start);
    for (; at < value.size() && !isUnreserved(value[at]); ++at) appendEscape(out, value[at]);
  }
}

Text urlEncode(const Text& value) {
  if (!value) return std::nullopt;
  std::string encoded;
  encoded.reserve(value->size());
  appendUrlEncoded(encoded, *value);
  return encoded;
}

}  // namespace tavlo
