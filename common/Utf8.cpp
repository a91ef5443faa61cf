#include "common/Utf8.h"

namespace tavlo {

CodePoint decodeUtf8(std::string_view text, std::size_t at, Surrogates surrogates) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byteAt(at);
  if (lead < 0x80) return {.value = lead, .length = 1, .valid = true};

  constexpr CodePoint kIllFormed{.value = 0, .length = 1, .valid = false};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || length > text.size() - at) return kIllFormed;

  char32_t value = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(at + i) & 0xC0U) != 0x80U) return kIllFormed;
    value = (value << 6U) | (byteAt(at + i) & 0x3FU);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < kSmallest[length] || value > 0x10FFFF) return kIllFormed;
  if (surrogate && surrogates == Surrogates::refused) return kIllFormed;
  return {.value = value, .length = length, .valid = true};
}

void appendUtf8(std::string& out, char32_t codePoint) {
  const auto continuation = [&](unsigned shift) {
    out.push_back(static_cast<char>(0x80U | ((codePoint >> shift) & 0x3FU)));
  };
  if (codePoint < 0x80) {
    out.push_back(static_cast<char>(codePoint));
  } else if (codePoint < 0x800) {
    out.push_back(static_cast<char>(0xC0U | (codePoint >> 6U)));
    continuation(0);
  } else if (codePoint < 0x10000) {
    out.push_back(static_cast<char>(0xE0U | (codePoint >> 12U)));
    continuation(6);
    continuation(0);
  } else {
    out.push_back(static_cast<char>(0xF0U | (codePoint >> 18U)));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

bool isUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint next = decodeUtf8(text, at);
    if (!next.valid) return false;
    at += next.length;
  }
  return true;
}

bool isWhitespace(char32_t codePoint) {
  return codePoint == 0x09 || codePoint == 0x20 || codePoint == 0xA0 || codePoint == 0x1680 ||
         (codePoint >= 0x2000 && codePoint <= 0x200A) || codePoint == 0x202F || codePoint == 0x205F ||
         codePoint == 0x3000;
}

bool isWhitespaceOrNewline(char32_t codePoint) {
  return isWhitespace(codePoint) || (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 ||
         codePoint == 0x2028 || codePoint == 0x2029;
}

}  // namespace tavlo
