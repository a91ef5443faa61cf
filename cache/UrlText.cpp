#include "cache/UrlText.h"

#include <cstddef>

#include "common/Utf8.h"

namespace tavlo {
namespace {

using Predicate = bool (*)(char32_t);

// Where the code point begins that ends the text.
std::size_t lastCodePoint(std::string_view text) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t length = 1; length <= kLongest && length <= text.size(); ++length) {
    const std::size_t at = text.size() - length;
    if (const CodePoint last = decodeUtf8(text, at); last.valid && last.length == length) return at;
  }
  return text.size() - 1;
}

bool isVisibleAscii(char c) { return c > ' ' && c < '\x7F'; }

std::string_view trimmed(std::string_view text, Predicate isBlank) {
  const auto blankAt = [&](std::size_t at) {
    const CodePoint codePoint = decodeUtf8(text, at);
    return codePoint.valid && isBlank(codePoint.value) ? codePoint.length : 0;
  };
  while (!text.empty() && !isVisibleAscii(text.front())) {
    const std::size_t length = blankAt(0);
    if (length == 0) break;
    text.remove_prefix(length);
  }
  while (!text.empty() && !isVisibleAscii(text.back())) {
    const std::size_t length = blankAt(lastCodePoint(text));
    if (length == 0) break;
    text.remove_suffix(length);
  }
  return text;
}

}  // namespace

std::string_view trimmedOfWhitespace(std::string_view text) { return trimmed(text, &isWhitespace); }

std::string_view cleanedUrl(std::string_view text, std::string& room) {
  if (text.find('\n') != std::string_view::npos) {
    room = text;
    std::erase(room, '\n');
    text = room;
  }
  return trimmed(text, &isWhitespaceOrNewline);
}

}  // namespace tavlo
