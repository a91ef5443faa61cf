// Any bytes are a URL reference or none, as a second reading of RFC 3986 says: split at the characters that its
// appendix B names, each component against its own alphabet, IPv6 addresses as the C library takes them.
#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "common/UrlGrammar.h"
#include "fuzz/Promise.h"

namespace {

using namespace std::string_view_literals;
using tavlo::UrlReference;
using tavlo::fuzz::require;

constexpr auto kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"sv;
constexpr auto kDigits = "0123456789"sv;
constexpr auto kHexDigits = "0123456789ABCDEFabcdef"sv;
constexpr auto kUnreservedMarks = "-._~"sv;
constexpr auto kSubDelims = "!$&'()*+,;="sv;

bool consistsOf(std::string_view text, std::string_view characters) {
  return text.find_first_not_of(characters) == std::string_view::npos;
}

std::string alphabet(std::string_view more) {
  return std::string(kLetters).append(kDigits).append(kUnreservedMarks).append(kSubDelims).append(more);
}

bool isComponent(std::string_view text, std::string_view more) {
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1)) {
    const std::string_view digits = text.substr(at + 1, 2);
    if (digits.size() != 2 || !consistsOf(digits, kHexDigits)) return false;
  }
  return consistsOf(text, alphabet(more) + "%");
}

bool isAddress(const std::string& literal) {
  if (!literal.empty() && (literal[0] == 'v' || literal[0] == 'V')) {
    const std::size_t dot = literal.find('.');
    return dot != std::string::npos && dot > 1 && consistsOf(literal.substr(1, dot - 1), kHexDigits) &&
           dot + 1 < literal.size() && consistsOf(literal.substr(dot + 1), alphabet(":"));
  }
  std::array<unsigned char, 16> bytes{};
  return literal.find('\0') == std::string::npos && ::inet_pton(AF_INET6, literal.c_str(), bytes.data()) == 1;
}

bool isAuthority(std::string_view text) {
  const std::size_t at = text.rfind('@');
  if (at != std::string_view::npos && !isComponent(text.substr(0, at), ":")) return false;
  const std::string_view host = at == std::string_view::npos ? text : text.substr(at + 1);
  const std::size_t bracket = host.rfind(']');
  const std::size_t colon = host.find(':', bracket == std::string_view::npos ? 0 : bracket);
  if (colon != std::string_view::npos && !consistsOf(host.substr(colon + 1), kDigits)) return false;
  const std::string_view name = host.substr(0, colon);
  if (!name.starts_with('[')) return isComponent(name, "");
  return name.ends_with(']') && isAddress(std::string(name.substr(1, name.size() - 2)));
}

std::optional<UrlReference> expected(std::string_view text) {
  UrlReference url;
  std::size_t end = text.find_first_of(":/?#");
  if (end != std::string_view::npos && text[end] == ':') {
    url.scheme = text.substr(0, end);
    const std::string first(url.scheme->substr(0, 1));
    if (first.empty() || !consistsOf(first, kLetters)) return std::nullopt;
    if (!consistsOf(*url.scheme, std::string(kLetters).append(kDigits) + "+-.")) return std::nullopt;
    text.remove_prefix(end + 1);
  }
  if (text.starts_with("//")) {
    end = std::min(text.find_first_of("/?#", 2), text.size());
    url.authority = text.substr(2, end - 2);
    if (!isAuthority(*url.authority)) return std::nullopt;
    text.remove_prefix(end);
  }
  end = std::min(text.find_first_of("?#"), text.size());
  url.path = text.substr(0, end);
  text.remove_prefix(end);
  if (text.starts_with('?')) {
    end = std::min(text.find('#'), text.size());
    url.query = text.substr(1, end - 1);
    text.remove_prefix(end);
  }
  if (text.starts_with('#')) url.fragment = text.substr(1);
  if (!isComponent(url.path, ":@/") || !isComponent(url.query.value_or(""), ":@/?") ||
      !isComponent(url.fragment.value_or(""), ":@/?")) {
    return std::nullopt;
  }
  return url;
}

std::string joined(const UrlReference& url) {
  std::string text;
  if (url.scheme) text.append(*url.scheme).append(":");
  if (url.authority) text.append("//").append(*url.authority);
  text.append(url.path);
  if (url.query) text.append("?").append(*url.query);
  if (url.fragment) text.append("#").append(*url.fragment);
  return text;
}

void checkDecoding(std::string_view component) {
  const std::string decoded = tavlo::percentDecoded(component);
  std::size_t at = 0;
  for (const char c : decoded) {
    if (component[at] != '%') {
      require(component[at++] == c, "what is not escaped stays");
      continue;
    }
    const int byte = std::stoi(std::string(component.substr(at + 1, 2)), nullptr, 16);
    require(static_cast<char>(byte) == c, "an escape is its byte");
    at += 3;
  }
  require(at == component.size(), "each byte and each escape is decoded");
}

void checkExtension(std::string_view path) {
  const std::string_view extension = tavlo::pathExtension(path);
  std::string name(path);
  while (name.ends_with('/')) name.pop_back();
  name.erase(0, name.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  require(extension == (dot == std::string::npos ? "" : name.substr(dot + 1)),
          "the extension follows the last dot of the last component");
  require(extension.empty() || (extension.data() >= path.data() && extension.data() < path.data() + path.size()),
          "the extension lies in the path");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = tavlo::fuzz::textOf(data, size);
  checkExtension(text);
  const auto url = tavlo::parseUrlReference(text);
  const auto other = expected(text);
  require(url.has_value() == other.has_value(), "references are those of RFC 3986");
  if (!url) return 0;

  require(joined(*url) == text, "the components are the whole text");
  require(url->scheme == other->scheme, "the scheme is that of RFC 3986");
  require(url->authority == other->authority, "the authority is that of RFC 3986");
  require(url->path == other->path, "the path is that of RFC 3986");
  require(url->query == other->query, "the query is that of RFC 3986");
  require(url->fragment == other->fragment, "the fragment is that of RFC 3986");
  for (const auto& component : {url->authority, std::optional(url->path), url->query, url->fragment}) {
    checkDecoding(component.value_or(""));
  }
  checkExtension(tavlo::percentDecoded(url->path));
  return 0;
}
