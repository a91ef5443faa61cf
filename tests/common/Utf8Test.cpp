#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/Utf8.h"

namespace tavlo {
namespace {

struct Sequence {
  const char* name;
  std::string bytes;
  char32_t value;  // 0 where ill-formed
};

const std::vector<Sequence> kWellFormed = {
    {"first of one byte", std::string(1, '\0'), 0x00},
    {"last of one byte", "\x7F", 0x7F},
    {"first of two", "\xC2\x80", 0x80},
    {"last of two", "\xDF\xBF", 0x7FF},
    {"first of three", "\xE0\xA0\x80", 0x800},
    {"last before the surrogates", "\xED\x9F\xBF", 0xD7FF},
    {"first after the surrogates", "\xEE\x80\x80", 0xE000},
    {"last of three", "\xEF\xBF\xBF", 0xFFFF},
    {"first of four", "\xF0\x90\x80\x80", 0x10000},
    {"last of all", "\xF4\x8F\xBF\xBF", 0x10FFFF},
};

const std::vector<Sequence> kIllFormed = {
    {"lone continuation", "\x80", 0},
    {"last continuation", "\xBF", 0},
    {"two bytes for U+0000", "\xC0\x80", 0},
    {"two bytes for U+007F", "\xC1\xBF", 0},
    {"three bytes for U+07FF", "\xE0\x9F\xBF", 0},
    {"four bytes for U+FFFF", "\xF0\x8F\xBF\xBF", 0},
    {"above the last", "\xF4\x90\x80\x80", 0},
    {"lead F5", "\xF5\x80\x80\x80", 0},
    {"lead FF", "\xFF", 0},
    {"cut after one of two", "\xC3", 0},
    {"cut after two of three", "\xE2\x82", 0},
    {"cut after three of four", "\xF0\x9F\x98", 0},
    {"ASCII where the second belongs", "\xC3(", 0},
    {"lead where the third belongs", "\xE2\x82\xC3", 0},
    {"ASCII where the fourth belongs", "\xF0\x9F\x98(", 0},
};

const std::vector<Sequence> kSurrogates = {
    {"first high", "\xED\xA0\x80", 0xD800},
    {"last high", "\xED\xAF\xBF", 0xDBFF},
    {"first low", "\xED\xB0\x80", 0xDC00},
    {"last low", "\xED\xBF\xBF", 0xDFFF},
};

TEST(Utf8, WellFormedSequenceIsOneCodePoint) {
  for (const auto& [name, bytes, value] : kWellFormed) {
    const CodePoint decoded = decodeUtf8(bytes, 0);

    EXPECT_TRUE(decoded.valid) << name;
    EXPECT_EQ(decoded.value, value) << name;
    EXPECT_EQ(decoded.length, bytes.size()) << name;
    EXPECT_TRUE(isUtf8(bytes)) << name;
  }
}

TEST(Utf8, IllFormedSequenceIsSteppedOverByOneByte) {
  for (const auto& [name, bytes, value] : kIllFormed) {
    for (const Surrogates surrogates : {Surrogates::refused, Surrogates::accepted}) {
      const CodePoint decoded = decodeUtf8(bytes, 0, surrogates);

      EXPECT_FALSE(decoded.valid) << name;
      EXPECT_EQ(decoded.value, value) << name;
      EXPECT_EQ(decoded.length, 1U) << name;
    }
    EXPECT_FALSE(isUtf8(bytes)) << name;
    EXPECT_FALSE(isUtf8("a" + bytes)) << name;
  }
}

TEST(Utf8, SurrogateIsOneCodePointOnlyWhenAccepted) {
  for (const auto& [name, bytes, value] : kSurrogates) {
    const CodePoint refused = decodeUtf8(bytes, 0);
    const CodePoint accepted = decodeUtf8(bytes, 0, Surrogates::accepted);

    EXPECT_FALSE(refused.valid) << name;
    EXPECT_EQ(refused.length, 1U) << name;
    EXPECT_TRUE(accepted.valid) << name;
    EXPECT_EQ(accepted.value, value) << name;
    EXPECT_EQ(accepted.length, 3U) << name;
    EXPECT_FALSE(isUtf8(bytes)) << name;
  }
}

TEST(Utf8, NoByteBehindTheTextIsRead) {
  const std::string text = "a\xE2\x82\xAC";

  const CodePoint decoded = decodeUtf8(std::string_view(text).substr(0, 3), 1);

  EXPECT_FALSE(decoded.valid);
}

TEST(Utf8, EveryCodePointComesBack) {
  for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    std::string text = "x";
    appendUtf8(text, codePoint);

    const CodePoint decoded = decodeUtf8(text, 1, Surrogates::accepted);

    ASSERT_TRUE(decoded.valid && decoded.value == codePoint && decoded.length == text.size() - 1)
        << static_cast<unsigned>(codePoint);
  }
}

// How many there are of each length is known without a decoder.
TEST(Utf8, ExactlyTheSequencesOfTheStandardAreWellFormed) {
  std::size_t two = 0;
  std::size_t three = 0;
  std::size_t four = 0;
  std::string text(4, '\0');

  for (unsigned lead = 0x80; lead <= 0xFF; ++lead) {
    text[0] = static_cast<char>(lead);
    for (unsigned second = 0; second <= 0xFF; ++second) {
      text[1] = static_cast<char>(second);
      two += decodeUtf8(text.substr(0, 2), 0).valid ? 1 : 0;
      for (unsigned third = 0; third <= 0xFF; ++third) {
        text[2] = static_cast<char>(third);
        if (lead >= 0xE0) three += decodeUtf8(std::string_view(text).substr(0, 3), 0).length == 3 ? 1 : 0;
        for (const unsigned fourth : {0x00U, 0x7FU, 0x80U, 0xBFU, 0xC0U, 0xFFU}) {
          text[3] = static_cast<char>(fourth);
          if (lead >= 0xF0) four += decodeUtf8(text, 0).length == 4 ? 1 : 0;
        }
      }
    }
  }

  EXPECT_EQ(two, 0x800U - 0x80U);
  EXPECT_EQ(three, 0x10000U - 0x800U - 0x800U);
  EXPECT_EQ(four, 0x100000U / 64 * 2);  // two of the six tried are among the 64 that may come last
}

std::vector<char32_t> allOf(bool (*set)(char32_t)) {
  std::vector<char32_t> found;
  for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    if (set(codePoint)) found.push_back(codePoint);
  }
  return found;
}

TEST(Utf8, WhitespaceIsThis) {
  EXPECT_EQ(allOf(&isWhitespace),
            (std::vector<char32_t>{0x09, 0x20, 0xA0, 0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006,
                                   0x2007, 0x2008, 0x2009, 0x200A, 0x202F, 0x205F, 0x3000}));
}

TEST(Utf8, WhitespaceAndNewlinesAreThese) {
  EXPECT_EQ(allOf(&isWhitespaceOrNewline),
            (std::vector<char32_t>{0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,   0xA0,   0x1680,
                                   0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008,
                                   0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000}));
}

}  // namespace
}  // namespace tavlo
