#include <gtest/gtest.h>

#include "request/UrlEncode.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"

namespace tavlo {
namespace {

TEST(UrlEncodeTest, AbsentStaysAbsentAndEmptyStaysEmpty) {
  EXPECT_EQ(urlEncode(std::nullopt), std::nullopt);
  EXPECT_EQ(urlEncode(""), "");
}

TEST(UrlEncodeTest, UnreservedCharactersStay) {
  const std::string unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

  EXPECT_EQ(urlEncode(unreserved), unreserved);
}

TEST(UrlEncodeTest, EverythingElseIsEscapedInUpperCase) {
  EXPECT_EQ(urlEncode("a b&c=d+e/f?%"), "a%20b%26c%3Dd%2Be%2Ff%3F%25");
  EXPECT_EQ(urlEncode("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80"), "%C3%BC%E2%82%AC%F0%9F%98%80");
  EXPECT_EQ(urlEncode("\xFF\x80"), "%FF%80");
  EXPECT_EQ(urlEncode(std::string("a\0b", 3)), "a%00b");
}

TEST(UrlEncodeTest, AppendingKeepsWhatIsThere) {
  std::string out = "q=";

  appendUrlEncoded(out, "a b");
  appendUrlEncoded(out, "");

  EXPECT_EQ(out, "q=a%20b");
}

TEST(UrlEncodeTest, TextsOfEveryLengthAreEncodedToTheirEnd) {
  std::string expectedBlanks;
  std::string expectedPairs;
  for (std::size_t length = 0; length <= 300; ++length) {
    std::string pairs;
    for (std::size_t i = 0; i < length; ++i) pairs += "a&";

    EXPECT_EQ(urlEncode(std::string(length, ' ')), expectedBlanks) << length;
    EXPECT_EQ(urlEncode(pairs), expectedPairs) << length;
    EXPECT_EQ(urlEncode(std::string(length, 'a') + "="), std::string(length, 'a') + "%3D") << length;

    expectedBlanks += "%20";
    expectedPairs += "a%26";
  }
}

TEST(UrlEncodeTest, ALongTextTakesTheMemoryOfItsOwnSize) {
  const Text escapedOnce = urlEncode(std::string(1000, 'a') + "&");
  const Text escapedWholly = urlEncode(std::string(1000, '&'));

  EXPECT_EQ(escapedOnce->size(), 1003U);
  EXPECT_LT(escapedOnce->capacity(), 1003U + 64U);
  EXPECT_EQ(escapedWholly->size(), 3000U);
  EXPECT_LT(escapedWholly->capacity(), 3000U + 64U);
}

TEST(UrlEncodeTest, OneEscapeIsFoundAtEveryPlaceOfATextThatElseStays) {
  for (std::size_t length = 1; length <= 40; ++length) {
    for (std::size_t place = 0; place < length; ++place) {
      std::string text(length, 'x');
      text[place] = '/';

      EXPECT_EQ(urlEncode(text), std::string(place, 'x') + "%2F" + std::string(length - place - 1, 'x'));
    }
  }
}

// Every "%" begins two digits.
std::string decoded(const std::string& text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool escape = text[at] == '%';
    out += escape ? test::fromHex(text.substr(at + 1, 2)) : std::string(1, text[at]);
    if (escape) at += 2;
  }
  return out;
}

TEST(UrlEncodeTest, AgreesWithASecondImplementationOnAllBytesAndPairs) {
  const auto lines = test::splitLines(test::runOracle("url_encode.py"));

  ASSERT_EQ(lines.size(), 256U + 65536U);
  for (const std::string& line : lines) {
    const std::size_t tab = line.find('\t');
    const std::string bytes = test::fromHex(line.substr(0, tab));
    const std::string encoded = urlEncode(bytes).value_or("absent");
    ASSERT_EQ(encoded, line.substr(tab + 1));
    ASSERT_EQ(urlEncode("safe" + bytes + "safe"), "safe" + line.substr(tab + 1) + "safe");
    ASSERT_EQ(decoded(encoded), bytes);
    ASSERT_EQ(encoded.find_first_of("&= "), std::string::npos);
  }
  test::reached("T14 urlEncode", "65792 bytes and pairs of bytes");
}

}  // namespace
}  // namespace tavlo
