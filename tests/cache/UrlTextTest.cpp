#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "cache/UrlText.h"
#include "common/Utf8.h"
#include "tests/support/CaseName.h"

namespace tavlo {
namespace {

struct Case {
  const char* name;
  std::string text;
  std::string trimmed;  // of whitespace
  std::string cleaned;
};

class UrlText : public testing::TestWithParam<Case> {};

TEST_P(UrlText, IsTrimmedByTheWriterAndCleanedByTheReaders) {
  const std::string& text = GetParam().text;
  const std::unique_ptr<char[]> exact(new char[text.size()]);  // so that a byte read too far is seen
  text.copy(exact.get(), text.size());

  EXPECT_EQ(trimmedOfWhitespace({exact.get(), text.size()}), GetParam().trimmed);
  std::string room;
  EXPECT_EQ(cleanedUrl({exact.get(), text.size()}, room), GetParam().cleaned);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, UrlText,
    testing::Values(Case{"Empty", "", "", ""}, Case{"Clean", "http://h/a", "http://h/a", "http://h/a"},
                    Case{"Blanks", " \t ", "", ""}, Case{"BlanksAround", " \ta b\t ", "a b", "a b"},
                    Case{"NewlineAtTheEnds", "\na\n", "\na\n", "a"}, Case{"NewlineInside", "a\nb", "a\nb", "ab"},
                    Case{"BlankBehindANewline", "\n a \n", "\n a \n", "a"},
                    Case{"NewlineBehindABlank", " \na\n ", "\na\n", "a"},
                    Case{"CarriageReturnInsideStays", "a\rb", "a\rb", "a\rb"},
                    Case{"CarriageReturnsAtTheEnds", "\r\na\r\n", "\r\na\r\n", "a"},
                    Case{"NewlineBeforeACombiningMark", "a\n\xCC\x81", "a\n\xCC\x81", "a\xCC\x81"},
                    Case{"NextLine",
                         "\xC2\x85"
                         "a\xC2\x85",
                         "\xC2\x85"
                         "a\xC2\x85",
                         "a"},
                    Case{"LineAndParagraphSeparators",
                         "\xE2\x80\xA8"
                         "a\xE2\x80\xA9",
                         "\xE2\x80\xA8"
                         "a\xE2\x80\xA9",
                         "a"},
                    Case{"VerticalTabAndFormFeed", "\va\f", "\va\f", "a"},
                    Case{"NoBreakAndIdeographicSpace",
                         "\xC2\xA0"
                         "a\xE3\x80\x80",
                         "a", "a"},
                    Case{"OghamAndHairSpace",
                         "\xE1\x9A\x80"
                         "a\xE2\x80\x8A",
                         "a", "a"},
                    Case{"ByteOrderMarkStays",
                         "\xEF\xBB\xBF"
                         "a",
                         "\xEF\xBB\xBF"
                         "a",
                         "\xEF\xBB\xBF"
                         "a"},
                    Case{"ZeroWidthSpaceStays", "a\xE2\x80\x8B", "a\xE2\x80\x8B", "a\xE2\x80\x8B"},
                    Case{"NulStays", std::string("\0a\0", 3), std::string("\0a\0", 3), std::string("\0a\0", 3)},
                    Case{"LoneContinuationStays",
                         "\xA0"
                         "a\xA0",
                         "\xA0"
                         "a\xA0",
                         "\xA0"
                         "a\xA0"},
                    Case{"CutCodePointStays", " a\xE3\x80", "a\xE3\x80", "a\xE3\x80"},
                    Case{"TooManyContinuations", "a\xE3\x80\x80\x80", "a\xE3\x80\x80\x80", "a\xE3\x80\x80\x80"},
                    Case{"FourByteCodePointStays", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"}),
    test::kCaseName);

TEST(UrlTextSets, EveryCodePointAtBothEndsIsCutExactlyWhenItIsABlank) {
  for (char32_t codePoint = 1; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint == '\n' || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) continue;
    std::string mark;
    appendUtf8(mark, codePoint);
    const std::string text = mark + "a" + mark;
    std::string room;
    ASSERT_EQ(trimmedOfWhitespace(text) == "a", isWhitespace(codePoint)) << std::hex << std::uint32_t{codePoint};
    ASSERT_EQ(cleanedUrl(text, room) == "a", isWhitespaceOrNewline(codePoint)) << std::hex << std::uint32_t{codePoint};
  }
}

}  // namespace
}  // namespace tavlo
