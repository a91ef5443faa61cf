// The two pure operations of the face.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "TavloUtility.h"
#include "common/Md5.h"
#include "common/TavloException.h"
#include "common/UrlGrammar.h"
#include "common/Utf8.h"

namespace tavlo {
namespace {

constexpr std::string_view kNotAText = "md5:() Invalid string for passed for hash";

// The digest takes its length as a 32-bit count, which wraps.
constexpr std::size_t countedIn32Bits(std::size_t length) { return static_cast<std::uint32_t>(length); }
static_assert(countedIn32Bits(0xFFFFFFFF) == 0xFFFFFFFF);
static_assert(sizeof(std::size_t) == 4 || countedIn32Bits(std::size_t{0xFFFFFFFF} + 6) == 5);

// What a reader of NUL-terminated text sees.
std::string_view upToFirstNul(std::string_view text) {
  return text.substr(0, countedIn32Bits(std::min(text.find('\0'), text.size())));
}

}  // namespace

Text TavloUtility::md5(const std::optional<Value>& value) {
  if (!value) return std::nullopt;
  const std::string* const text = value->ifText();
  if (!text) {
    TavloException::tavloException(kNotAText);
    return std::nullopt;
  }
  return hexadecimal(md5Digest(upToFirstNul(*text)));
}

Text TavloUtility::getFileExtensionFromUrl(const Text& url) {
  if (!url) return std::nullopt;
  const auto reference = parseUrlReference(*url);
  if (!reference) return std::nullopt;
  const std::string path = percentDecoded(reference->path);
  if (!isUtf8(path)) return std::nullopt;
  return std::string(pathExtension(path));
}

}  // namespace tavlo
