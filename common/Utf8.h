// UTF-8, one code point at a time: the one decoder and encoder that everything else here uses.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavlo {

// A code point and the bytes that it takes. Where the bytes are ill-formed, `valid` is false and `length` is
// 1: the byte to step over.
struct CodePoint {
  char32_t value = 0;
  std::size_t length = 0;
  bool valid = false;
};

enum class Surrogates { refused, accepted };

// The code point that starts at `at`, which must lie inside the text. Shortest forms only, nothing above
// U+10FFFF. Surrogates, three bytes each, are ill-formed unless accepted (a lone one is how text that came
// from broken UTF-16 is held).
[[nodiscard]] CodePoint decodeUtf8(std::string_view text, std::size_t at, Surrogates surrogates = Surrogates::refused);

// Appends the code point, which must not be above U+10FFFF; a surrogate as three bytes.
void appendUtf8(std::string& out, char32_t codePoint);

[[nodiscard]] bool isUtf8(std::string_view text);

// The platform's whitespace set: Zs and U+0009. U+200B and U+FEFF are not in it.
[[nodiscard]] bool isWhitespace(char32_t codePoint);

// Its whitespace-and-newline set: also U+000A to U+000D, U+0085, U+2028 and U+2029.
[[nodiscard]] bool isWhitespaceOrNewline(char32_t codePoint);

}  // namespace tavlo
