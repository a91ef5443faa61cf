#include "common/Md5.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace tavlo {
namespace {

constexpr std::size_t kBlockSize = 64;
constexpr std::size_t kLengthSize = 8;

using State = std::array<std::uint32_t, 4>;

constexpr State kInitial = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

// floor(2^32 * |sin(i + 1)|)
constexpr std::array<std::uint32_t, 64> kSines = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr std::array<std::array<int, 4>, 4> kRotations = {
    {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};

template <std::size_t round>
std::uint32_t mix(std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  if constexpr (round == 0) return d ^ (b & (c ^ d));
  // The two halves share no bit; added, only (b & d) waits for the step before.
  if constexpr (round == 1) return (b & d) + (c & ~d);
  if constexpr (round == 2) return b ^ c ^ d;
  return c ^ (b | ~d);
}

template <std::size_t step>
std::uint32_t word(const char* block) {
  constexpr std::size_t kIndex[] = {step, 5 * step + 1, 3 * step + 5, 7 * step};
  const auto* const bytes = reinterpret_cast<const unsigned char*>(block) + 4 * (kIndex[step / 16] % 16);
  return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U |
         std::uint32_t{bytes[3]} << 24U;
}

template <std::size_t step>
void advance(State& state, const char* block) {
  std::uint32_t& a = state[(64 - step) % 4];
  const std::uint32_t b = state[(65 - step) % 4];
  const std::uint32_t c = state[(66 - step) % 4];
  const std::uint32_t d = state[(67 - step) % 4];
  const std::uint32_t sum = a + word<step>(block) + kSines[step] + mix<step / 16>(b, c, d);
  a = b + std::rotl(sum, kRotations[step / 16][step % 4]);
}

// Takes the state by value, so that it stays in registers from block to block.
template <std::size_t... steps>
State transformed(State state, std::string_view blocks, std::index_sequence<steps...>) {
  for (; blocks.size() >= kBlockSize; blocks.remove_prefix(kBlockSize)) {
    State next = state;
    (advance<steps>(next, blocks.data()), ...);
    for (std::size_t i = 0; i < state.size(); ++i) state[i] += next[i];
  }
  return state;
}

State transformed(const State& state, std::string_view blocks) {
  return transformed(state, blocks, std::make_index_sequence<64>());
}

// The digest takes its length as a 32-bit count, which wraps.
constexpr std::size_t countedIn32Bits(std::size_t length) { return static_cast<std::uint32_t>(length); }
static_assert(countedIn32Bits(0xFFFFFFFF) == 0xFFFFFFFF);
static_assert(sizeof(std::size_t) == 4 || countedIn32Bits(std::size_t{0xFFFFFFFF} + 6) == 5);

// What a reader of NUL-terminated text sees.
std::string_view upToFirstNul(std::string_view text) {
  return text.substr(0, countedIn32Bits(std::min(text.find('\0'), text.size())));
}

using Digits = std::array<char, 2 * std::tuple_size_v<Md5Digest>>;

Digits digitsOf(const Md5Digest& digest) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  Digits digits{};
  for (std::size_t i = 0; i < digest.size(); ++i) {
    digits[2 * i] = kDigits[digest[i] >> 4U];
    digits[2 * i + 1] = kDigits[digest[i] & 15U];
  }
  return digits;
}

}  // namespace

Md5Digest md5Digest(std::string_view bytes) {
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  State state = transformed(kInitial, bytes);
  bytes.remove_prefix(bytes.size() / kBlockSize * kBlockSize);

  // The rest, one set bit, zeros, and the length in bits: one block or two.
  std::array<char, 2 * kBlockSize> tail{};
  std::copy(bytes.begin(), bytes.end(), tail.begin());
  tail[bytes.size()] = static_cast<char>(0x80);
  const std::size_t end = bytes.size() < kBlockSize - kLengthSize ? kBlockSize : 2 * kBlockSize;
  for (std::size_t i = 0; i < kLengthSize; ++i) tail[end - kLengthSize + i] = static_cast<char>(bits >> (8 * i));
  state = transformed(state, {tail.data(), end});

  Md5Digest digest;
  for (std::size_t i = 0; i < digest.size(); ++i) digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (8 * (i % 4)));
  return digest;
}

std::string md5OfText(std::string_view text) { return hexadecimal(md5Digest(upToFirstNul(text))); }

void appendMd5OfText(std::string& out, std::string_view text) {
  const Digits digits = digitsOf(md5Digest(upToFirstNul(text)));
  out.append(digits.begin(), digits.end());
}

std::string hexadecimal(const Md5Digest& digest) {
  const Digits digits = digitsOf(digest);
  return {digits.begin(), digits.end()};
}

}  // namespace tavlo
