#include "tests/support/Python.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

std::string quoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

}  // namespace

std::string runOracle(const std::string& script, const std::vector<std::string>& arguments, const std::string& input) {
  const TemporaryFolder folder;
  writeFile(folder / "in", input);
  std::string command = "/usr/bin/python3 " + quoted(std::string(TAVLO_SOURCE_DIR) + "/tests/oracles/" + script);
  for (const std::string& argument : arguments) command += " " + quoted(argument);
  command += " <" + quoted((folder / "in").string());
  command += " >" + quoted((folder / "out").string());
  command += " 2>" + quoted((folder / "err").string());
  if (std::system(command.c_str()) != 0) {
    throw std::runtime_error(script + " failed: " + readFile(folder / "err"));
  }
  return readFile(folder / "out");
}

std::string toHex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  hex.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    hex.push_back(kDigits[byte >> 4U]);
    hex.push_back(kDigits[byte & 15U]);
  }
  return hex;
}

std::string fromHex(const std::string& hex) {
  std::string bytes;
  bytes.reserve(hex.size() / 2);
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

std::vector<std::string> splitLines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace tavlo::test
