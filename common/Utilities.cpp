// The two pure operations of the face.
#include <cstdint>

#include "TavloUtility.h"
#include "common/Md5.h"
#include "common/TavloException.h"
#include "common/UrlGrammar.h"
#include "common/Utf8.h"

namespace tavlo {
namespace {

constexpr std::string_view kNotAText = "md5:() Invalid string for passed for hash";

// What a reader of NUL-terminated text sees, its length counted in 32 bits.
std::string_view upToFirstNul(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  return text.substr(0, static_cast<std::uint32_t>(text.size()));
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
