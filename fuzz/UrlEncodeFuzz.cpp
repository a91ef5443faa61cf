// Any bytes become a query value: what it may hold, what it stands for, and the appending form.
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "common/UrlGrammar.h"
#include "fuzz/Promise.h"
#include "request/UrlEncode.h"

namespace {

std::string expected(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
        std::string_view("-._~").find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      std::array<char, 4> triplet{};
      std::snprintf(triplet.data(), triplet.size(), "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
      encoded += triplet.data();
    }
  }
  return encoded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavlo;
  using fuzz::require;

  const std::string text(fuzz::textOf(data, size));
  const Text encoded = urlEncode(text);
  require(encoded.has_value(), "what is there stays there");
  require(encoded->find_first_of("&= +") == std::string::npos, "nothing in it ends the value");
  require(percentDecoded(*encoded) == text, "it stands for the text");
  require(*encoded == expected(text), "letters, digits and four marks stay, all else is escaped");
  const std::string reference = "?k=" + *encoded;
  const auto url = parseUrlReference(reference);
  require(url && url->query == reference.substr(1), "it is part of a query");

  std::string built = text;
  appendUrlEncoded(built, text);
  require(built == text + *encoded, "appending adds the same behind what is there");
  return 0;
}
