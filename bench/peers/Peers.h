// The same work in other libraries, each in a file of its own. Where a library is missing its constant is false, and
// its functions may only be named in a discarded `if constexpr`.
#pragma once

#include <string>
#include <string_view>

namespace tavlo::bench::peers {

inline constexpr bool kBoostUrl = TAVLO_PEER_BOOST_URL;
inline constexpr bool kCurl = TAVLO_PEER_CURL;
inline constexpr bool kGLib = TAVLO_PEER_GLIB;
inline constexpr bool kLibPlist = TAVLO_PEER_LIBPLIST;

// Every byte but the unreserved ones as %XX.
[[nodiscard]] std::string boostUrlEncode(std::string_view text);
[[nodiscard]] std::string curlEscape(std::string_view text);
[[nodiscard]] std::string gLibEscape(const std::string& text);

}  // namespace tavlo::bench::peers
