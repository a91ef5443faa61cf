#include "common/UrlGrammar.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace tavlo {
namespace {

// The RFC's character classes, one bit each. What may stand in a host's name (unreserved characters and sub-delims)
// may also stand in user information, that in a path, and that in a query.
enum Class : std::uint8_t {
  kAlpha = 1,
  kDigit = 2,
  kHexLetter = 4,
  kInName = 8,
  kInUserInfo = 16,
  kInPath = 32,
  kInQuery = 64,
};

constexpr auto kClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  const auto add = [&](std::string_view characters, unsigned which) {
    for (const char c : characters) classes[static_cast<unsigned char>(c)] |= static_cast<std::uint8_t>(which);
  };
  constexpr unsigned kAny = kInName | kInUserInfo | kInPath | kInQuery;
  add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", kAlpha | kAny);
  add("0123456789", kDigit | kAny);
  add("ABCDEFabcdef", kHexLetter);
  add("-._~!$&'()*+,;=", kAny);
  add(":", kInUserInfo | kInPath | kInQuery);
  add("@/", kInPath | kInQuery);
  add("?", kInQuery);
  return classes;
}();

bool is(char c, std::uint8_t classes) { return (kClasses[static_cast<unsigned char>(c)] & classes) != 0; }
bool isHexDigit(char c) { return is(c, kDigit | kHexLetter); }

bool allOf(std::string_view text, std::uint8_t classes, std::string_view others = {}) {
  return std::all_of(text.begin(), text.end(),
                     [&](char c) { return is(c, classes) || others.find(c) != std::string_view::npos; });
}

// Whether a whole run is of the class: all are looked up before one branch.
constexpr std::size_t kRun = 8;
bool isRun(const char* text, Class which) {
  std::uint8_t common = which;
  for (std::size_t i = 0; i < kRun; ++i) common &= kClasses[static_cast<unsigned char>(text[i])];
  return common != 0;
}

// Characters of the class and percent triplets.
bool isEncoded(std::string_view text, Class which) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t end = std::min(i + kRun, text.size());
    if (end - i == kRun && isRun(text.data() + i, which)) {
      i = end;
      continue;
    }
    while (i < end) {
      if (is(text[i], which)) {
        ++i;
        continue;
      }
      if (text[i] != '%' || text.size() - i < 3 || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) return false;
      i += 3;
    }
  }
  return true;
}

bool isScheme(std::string_view text) {
  return !text.empty() && is(text.front(), kAlpha) && allOf(text, kAlpha | kDigit, "+-.");
}

bool isDecimalOctet(std::string_view text) {
  if (text.empty() || text.size() > 3 || !allOf(text, kDigit)) return false;
  if (text.size() > 1 && text.front() == '0') return false;
  int value = 0;
  for (const char c : text) value = value * 10 + (c - '0');
  return value <= 255;
}

bool isIPv4(std::string_view text) {
  for (int i = 0; i < 3; ++i) {
    const std::size_t dot = text.find('.');
    if (dot == std::string_view::npos || !isDecimalOctet(text.substr(0, dot))) return false;
    text.remove_prefix(dot + 1);
  }
  return isDecimalOctet(text);
}

// How many 16-bit groups a run of "h16:h16:..." holds, an IPv4 address as its last one counting two. Absent
// when it is malformed. An empty run holds none.
std::optional<int> countGroups(std::string_view text, bool mayEndInIPv4) {
  int groups = 0;
  while (!text.empty()) {
    const std::size_t colon = std::min(text.find(':'), text.size());
    const std::string_view group = text.substr(0, colon);
    const bool last = colon == text.size();
    if (last && mayEndInIPv4 && isIPv4(group)) return groups + 2;
    if (group.empty() || group.size() > 4 || !std::all_of(group.begin(), group.end(), isHexDigit)) return std::nullopt;
    ++groups;
    if (last) break;
    text.remove_prefix(colon + 1);
    if (text.empty()) return std::nullopt;
  }
  return groups;
}

bool isIPv6(std::string_view text) {
  constexpr int kGroups = 8;
  const std::size_t gap = text.find("::");
  if (gap == std::string_view::npos) return countGroups(text, true) == kGroups;
  const auto before = countGroups(text.substr(0, gap), false);
  const auto after = countGroups(text.substr(gap + 2), true);
  return before && after && *before + *after < kGroups;
}

bool isFutureAddress(std::string_view text) {
  if (text.empty() || (text.front() != 'v' && text.front() != 'V')) return false;
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return false;
  const std::string_view version = text.substr(1, dot - 1);
  const std::string_view address = text.substr(dot + 1);
  return !version.empty() && std::all_of(version.begin(), version.end(), isHexDigit) && !address.empty() &&
         allOf(address, kInUserInfo);
}

bool isAuthority(std::string_view text) {
  if (const std::size_t at = text.find('@'); at != std::string_view::npos) {
    if (!isEncoded(text.substr(0, at), kInUserInfo)) return false;
    text.remove_prefix(at + 1);
  }
  std::string_view port;
  if (text.starts_with('[')) {
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos) return false;
    const std::string_view literal = text.substr(1, bracket - 1);
    if (!isIPv6(literal) && !isFutureAddress(literal)) return false;
    port = text.substr(bracket + 1);
    if (!port.empty() && port.front() != ':') return false;
  } else {
    const std::size_t colon = std::min(text.find(':'), text.size());
    if (!isEncoded(text.substr(0, colon), kInName)) return false;
    port = text.substr(colon);
  }
  return port.empty() || allOf(port.substr(1), kDigit);
}

// Cuts the text at the first `mark` and gives what follows it, absent when there is none.
std::optional<std::string_view> cutAt(std::string_view& text, char mark) {
  const std::size_t at = text.find(mark);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view rest = text.substr(at + 1);
  text = text.substr(0, at);
  return rest;
}

int hexValue(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

// Whether the text is a reference; its components are in `url` then.
bool parse(std::string_view text, UrlReference& url) {
  url.fragment = cutAt(text, '#');
  url.query = cutAt(text, '?');
  if (url.fragment && !isEncoded(*url.fragment, kInQuery)) return false;
  if (url.query && !isEncoded(*url.query, kInQuery)) return false;

  // A ":" before the first "/" ends a scheme; a relative reference has none there.
  const auto* const mark = std::find_if(text.begin(), text.end(), [](char c) { return c == ':' || c == '/'; });
  if (mark != text.end() && *mark == ':') {
    url.scheme = text.substr(0, static_cast<std::size_t>(mark - text.begin()));
    if (!isScheme(*url.scheme)) return false;
    text.remove_prefix(url.scheme->size() + 1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    const std::size_t slash = std::min(text.find('/'), text.size());
    url.authority = text.substr(0, slash);
    if (!isAuthority(*url.authority)) return false;
    text.remove_prefix(slash);
  }
  url.path = text;
  return isEncoded(text, kInPath);
}

}  // namespace

std::optional<UrlReference> parseUrlReference(std::string_view text) {
  std::optional<UrlReference> url(std::in_place);
  if (!parse(text, *url)) url.reset();
  return url;
}

std::string percentDecoded(std::string_view component) {
  std::string bytes;
  bytes.reserve(component.size());
  for (std::size_t i = 0; i < component.size(); ++i) {
    if (component[i] != '%') {
      bytes += component[i];
    } else {
      bytes += static_cast<char>(hexValue(component[i + 1]) * 16 + hexValue(component[i + 2]));
      i += 2;
    }
  }
  return bytes;
}

std::string_view pathExtension(std::string_view path) {
  path = path.substr(0, path.find_last_not_of('/') + 1);
  const std::string_view last = path.substr(path.find_last_of('/') + 1);
  const std::size_t dot = last.find_last_of('.');
  return dot == std::string_view::npos ? std::string_view{} : last.substr(dot + 1);
}

}  // namespace tavlo
