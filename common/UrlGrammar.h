// The grammar of URL references: RFC 3986, strictly.
//
// Values   absolute and relative references, the empty one included. Rejected are blanks, control characters,
//          bytes outside ASCII and the others that the RFC has no place for; a "%" without two hexadecimal
//          digits; a second "#"; a bad scheme (also a ":" in the first segment of a relative reference); an
//          authority with a second "@", a port that is no number, or an IP literal that is neither an IPv6
//          address nor "v" and a future form.
// Threads  pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavlo {

// Views into the text that was parsed, percent-encoded as it stands. An absent component is not there at all;
// an empty one is ("http://h?" has an empty query).
struct UrlReference {
  std::optional<std::string_view> scheme;
  std::optional<std::string_view> authority;
  std::string_view path;
  std::optional<std::string_view> query;
  std::optional<std::string_view> fragment;
};

[[nodiscard]] std::optional<UrlReference> parseUrlReference(std::string_view text);

// The bytes that a component stands for. It must come from a parsed reference.
[[nodiscard]] std::string percentDecoded(std::string_view component);

// What follows the last "." of the last component of a (decoded) path, without the dot; "" when there is no
// dot. Slashes at the end do not count as a component: "/clip.mp4/" has the extension "mp4".
[[nodiscard]] std::string_view pathExtension(std::string_view path);

}  // namespace tavlo
