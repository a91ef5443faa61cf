// The same work in other libraries, each in a file of its own. Where a library is missing its constant is false, and
// its functions may only be named in a discarded `if constexpr`.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavlo::bench::peers {

inline constexpr bool kBoostUrl = TAVLO_PEER_BOOST_URL;
inline constexpr bool kCurl = TAVLO_PEER_CURL;
inline constexpr bool kGcrypt = TAVLO_PEER_GCRYPT;
inline constexpr bool kGLib = TAVLO_PEER_GLIB;
inline constexpr bool kLibPlist = TAVLO_PEER_LIBPLIST;
inline constexpr bool kLibPng = TAVLO_PEER_LIBPNG;
inline constexpr bool kNettle = TAVLO_PEER_NETTLE;
inline constexpr bool kOpenSsl = TAVLO_PEER_OPENSSL;
inline constexpr bool kSqlite = TAVLO_PEER_SQLITE;

// Every byte but the unreserved ones as %XX.
[[nodiscard]] std::string boostUrlEncode(std::string_view text);
[[nodiscard]] std::string curlEscape(std::string_view text);
[[nodiscard]] std::string gLibEscape(const std::string& text);

// The MD5 digest.
using Md5Bytes = std::array<std::uint8_t, 16>;
[[nodiscard]] Md5Bytes openSslMd5(std::string_view text);
[[nodiscard]] Md5Bytes nettleMd5(std::string_view text);
[[nodiscard]] Md5Bytes gcryptMd5(std::string_view text);

}  // namespace tavlo::bench::peers
