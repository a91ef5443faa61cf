#include "request/UrlEncode.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

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

constexpr std::size_t kStretch = 240;  // bytes; that many can be counted in one
static_assert(kStretch <= std::numeric_limits<std::uint8_t>::max());

// All ones for a byte that stays, else all zeros, and without a branch: so the compiler counts many at once.
constexpr std::uint8_t whereItStays(char c) {
  const auto isIn = [](std::uint8_t byte, char first, char last) -> std::uint8_t {
    return static_cast<std::uint8_t>(byte - first) <= last - first ? 0xFF : 0;
  };
  const auto byte = static_cast<std::uint8_t>(c);
  std::uint8_t stays = isIn(byte | 0x20U, 'a', 'z');
  stays |= isIn(byte, '0', '9');
  stays |= isIn(byte, '-', '.');
  stays |= isIn(byte, '_', '_');
  stays |= isIn(byte, '~', '~');
  return stays;
}

std::size_t encodedSize(std::string_view value) {
  std::size_t size = 0;
  while (!value.empty()) {
    const std::string_view stretch = value.substr(0, kStretch);
    std::uint8_t staying = 0;
    for (const char c : stretch) staying -= whereItStays(c);
    size += 3 * stretch.size() - 2 * std::size_t{staying};
    value.remove_prefix(stretch.size());
  }
  return size;
}

constexpr std::size_t kWord = sizeof(std::uint64_t);

constexpr std::uint64_t inEachByte(unsigned byte) { return byte * 0x0101'0101'0101'0101U; }

// Whether all bytes of a word stay. Each comparison leaves its answer in the highest bit of a byte, worked out from
// the other seven bits, so that no sum carries into the next byte.
bool wordStays(const char* word) {
  constexpr std::uint64_t kSevenBits = inEachByte(0x7F);
  const auto isAtLeast = [](std::uint64_t bytes, char c) {
    return bytes + inEachByte(0x80U - static_cast<unsigned>(c));
  };
  const auto differs = [](std::uint64_t bytes, char c) {
    return (bytes ^ inEachByte(static_cast<unsigned>(c))) + kSevenBits;
  };
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, word, kWord);
  const std::uint64_t ascii = bytes & kSevenBits;
  const std::uint64_t lowerCase = ascii | inEachByte(0x20);
  const std::uint64_t stays = (isAtLeast(lowerCase, 'a') & ~isAtLeast(lowerCase, 'z' + 1)) |
                              (isAtLeast(ascii, '-') & ~isAtLeast(ascii, '9' + 1) & differs(ascii, '/')) |
                              ~(differs(ascii, '_') & differs(ascii, '~'));
  return ((~stays | bytes) & inEachByte(0x80)) == 0;
}

// Never for less than a word.
bool allStay(std::string_view value) {
  if (value.size() < kWord) return false;
  const char* const last = value.data() + value.size() - kWord;  // it may overlap the one before
  for (const char* word = value.data(); word < last; word += kWord) {
    if (!wordStays(word)) return false;
  }
  return wordStays(last);
}

// Writes each byte as a whole table row without a branch; the next one overwrites what does not count.
char* encode(std::string_view value, char* end) {
  const auto write = [&end](char c) {
    const Encoded& encoded = kEncoded[static_cast<unsigned char>(c)];
    std::memcpy(end, &encoded, sizeof encoded);
    end += encoded.length;
  };
  for (; value.size() >= kWord; value.remove_prefix(kWord)) {
    for (std::size_t i = 0; i < kWord; ++i) write(value[i]);  // a fixed count, which the compiler unrolls
  }
  for (const char c : value) write(c);
  return end;
}

}  // namespace

void appendUrlEncoded(std::string& out, std::string_view value) {
  if (allStay(value)) {
    out.append(value);
    return;
  }
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what was written is read
  std::array<char, urlEncodedRoom(kStretch)> buffer;
  while (!value.empty()) {
    const std::string_view stretch = value.substr(0, kStretch);
    out.append(buffer.data(), encode(stretch, buffer.data()));
    value.remove_prefix(stretch.size());
  }
}

char* writeUrlEncoded(char* to, std::string_view value) {
  // What stays before the first that does not is copied a word at a time.
  for (; value.size() >= kWord && wordStays(value.data()); value.remove_prefix(kWord)) {
    std::memcpy(to, value.data(), kWord);
    to += kWord;
  }
  return encode(value, to);
}

Text urlEncode(const Text& value) {
  if (!value) return std::nullopt;
  Text encoded(std::in_place);
  if (value->size() > kStretch) encoded->reserve(encodedSize(*value));  // a stretch is appended whole
  appendUrlEncoded(*encoded, *value);
  return encoded;
}

}  // namespace tavlo
