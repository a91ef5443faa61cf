// The MD5 digest of RFC 1321. It names cached files; it protects nothing.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavlo {

using Md5Digest = std::array<std::uint8_t, 16>;

[[nodiscard]] Md5Digest md5Digest(std::string_view bytes);

// The digits of the digest of a text's bytes up to its first U+0000.
[[nodiscard]] std::string md5OfText(std::string_view text);
void appendMd5OfText(std::string& out, std::string_view text);

// Lowercase hexadecimal digits, two a byte.
[[nodiscard]] std::string hexadecimal(const Md5Digest& digest);

}  // namespace tavlo
