#include "request/UrlEncode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace tavlo {
namespace {

// What a byte is written as, itself or its escape, and how much of that counts.
struct Encoded {
  std::array<char, 3> text;
  std::uint8_t length;
};
static_assert(sizeof(Encoded) == 4);

constexpr auto kEncoded = [] {
  constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::array<Encoded, 256> table{};
  for (unsigned byte = 0; byte < table.size(); ++byte)
    table[byte] = {{'%', kDigits[byte >> 4U], kDigits[byte & 15U]}, 3};
  for (const char c : kUnreserved) table[static_cast<unsigned char>(c)] = {{c}, 1};
  return table;
}();

const Encoded& encodedForm(char c) { return kEncoded[static_cast<unsigned char>(c)]; }
bool stays(char c) { return encodedForm(c).length == 1; }

}  // namespace

void appendUrlEncoded(std::string& out, std::string_view value) {
  // A run that stays is appended whole. What follows goes through a buffer, stretch by stretch: each byte is
  // written as a whole table row without a branch, and the next one overwrites what does not count.
  constexpr std::size_t kStretch = 64;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what was written is read
  std::array<char, 3 * kStretch + sizeof(Encoded)> buffer;
  while (!value.empty()) {
    const auto run = static_cast<std::size_t>(std::find_if_not(value.begin(), value.end(), stays) - value.begin());
    out.append(value, 0, run);
    value.remove_prefix(run);

    const std::string_view stretch = value.substr(0, kStretch);
    char* end = buffer.data();
    for (const char c : stretch) {
      const Encoded& encoded = encodedForm(c);
      std::memcpy(end, &encoded, sizeof encoded);
      end += encoded.length;
    }
    out.append(buffer.data(), end);
    value.remove_prefix(stretch.size());
  }
}

Text urlEncode(const Text& value) {
  if (!value) return std::nullopt;
  std::string encoded;
  appendUrlEncoded(encoded, *value);
  return encoded;
}

}  // namespace tavlo
