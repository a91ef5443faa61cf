// The two pure operations of the face.
#include <string>
#include <string_view>

#include "TavloUtility.h"
#include "common/Md5.h"
#include "common/TavloException.h"
#include "common/UrlGrammar.h"
#include "common/Utf8.h"

namespace tavlo {
namespace {

constexpr std::string_view kNotAText = "md5:() Invalid string for passed for hash";

}  // namespace

Text TavloUtility::md5(const std::optional<Value>& value) {
  if (!value) return std::nullopt;
  const auto text = value->ifText();
  if (!text) {
    TavloException::tavloException(kNotAText);
    return std::nullopt;
  }
  return md5OfText(*text);
}

Text TavloUtility::getFileExtensionFromUrl(const Text& url) {
  if (!url) return std::nullopt;
  const auto reference = parseUrlReference(*url);
  if (!reference) return std::nullopt;
  if (reference->path.find('%') == std::string_view::npos) return std::string(pathExtension(reference->path));  // ASCII
  const std::string path = percentDecoded(reference->path);
  if (!isUtf8(path)) return std::nullopt;
  return std::string(pathExtension(path));
}

}  // namespace tavlo
