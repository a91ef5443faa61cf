// The independent second opinion: scripts in tests/oracles, run by Debian's own Python.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavlo::test {

// The standard output of tests/oracles/<script> with these arguments, `input` on its standard input. Throws
// std::runtime_error, with what the script wrote to standard error, when it fails.
[[nodiscard]] std::string runOracle(const std::string& script, const std::vector<std::string>& arguments = {},
                                    const std::string& input = "");

// Bytes to and from lowercase hexadecimal, for lines that may hold any byte.
[[nodiscard]] std::string toHex(std::string_view bytes);
[[nodiscard]] std::string fromHex(const std::string& hex);

[[nodiscard]] std::vector<std::string> splitLines(const std::string& text);

}  // namespace tavlo::test
