#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "common/UrlGrammar.h"
#include "tests/support/CaseName.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo {
namespace {

struct Case {
  const char* name;
  const char* url;
  Text extension;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.url; }

class Extension : public testing::TestWithParam<Case> {};

TEST_P(Extension, IsWhatTheContractSays) {
  const Text extension = TavloUtility::getFileExtensionFromUrl(GetParam().url);

  EXPECT_EQ(extension, GetParam().extension);
}

constexpr auto kNone = std::nullopt;

INSTANTIATE_TEST_SUITE_P(
    Urls, Extension,
    testing::Values(
        // Case kept; query and fragment are no part of the path.
        Case{"QueryAndFragment", "http://h/v/clip.MP4?x=1.a#b.c", "MP4"}, Case{"TrailingSlash", "http://h/media/", ""},
        Case{"NoPath", "http://h", ""}, Case{"NoPathButQuery", "http://h.com?a.b", ""},
        Case{"DotInEarlierComponent", "http://h/a.b/c", ""}, Case{"LastDotCounts", "http://h/c.tar.gz", "gz"},
        Case{"EncodedDot", "http://h/clip%2Emp4", "mp4"}, Case{"SlashAfterTheName", "http://h/clip.mp4/", "mp4"},
        Case{"SlashesAfterTheName", "http://h/clip.mp4//", "mp4"}, Case{"HiddenName", "http://h/.mp4", "mp4"},
        Case{"DotAtTheEnd", "http://h/clip.", ""}, Case{"Parameters", "http://h/clip.mp4;v=1", "mp4;v=1"},
        Case{"EncodedSlash", "http://h/a.b%2Fc", ""}, Case{"EncodedText", "http://h/x.%C3%A9", "\xC3\xA9"},
        // Relative and opaque references.
        Case{"Empty", "", ""}, Case{"Relative", "v/clip.mp4", "mp4"}, Case{"NetworkPath", "//h.x/clip.mp4", "mp4"},
        Case{"Mail", "mailto:a@b.com", "com"}, Case{"ColonAfterSlash", "./a:b.c", "c"}, Case{"OnlyQuery", "?a.b", ""},
        Case{"OnlyFragment", "#a.b", ""}, Case{"EmptyAuthority", "file:///x.y", "y"},
        // Authorities.
        Case{"UserAndPort", "http://u:p@h:80/x.y", "y"}, Case{"EmptyPort", "http://h:/x.y", "y"},
        Case{"IPv6", "http://[::1]:80/x.y", "y"}, Case{"IPv6Full", "http://[1:2:3:4:5:6:7:8]/x.y", "y"},
        Case{"IPv6WithIPv4", "http://[::ffff:1.2.3.4]/x.y", "y"}, Case{"IPFuture", "http://[v1.a:b]/x.y", "y"},
        Case{"IPFutureInUpperCase", "http://[V1F.a:b]/x.y", "y"},
        Case{"EncodedSlashAtTheEnd", "http://h/clip.mp4%2F", "mp4"},
        // Rejected.
        Case{"Blank", "http://h/a b.mp4", kNone}, Case{"Newline", "http://h/a.mp4\n", kNone},
        Case{"NonAscii", "http://h/\xC3\xA9.mp4", kNone}, Case{"Control", "http://h/\x7F.mp4", kNone},
        Case{"TwoFragments", "http://h/x.y#a#b", kNone}, Case{"HalfTriplet", "http://h/x%4", kNone},
        Case{"TripletOfOtherDigits", "http://h/%zz.y", kNone}, Case{"SchemeStartsWithDigit", "1http://h/x.y", kNone},
        Case{"NoScheme", "://h/x.y", kNone}, Case{"EncodedScheme", "%3A:x.y", kNone},
        Case{"FutureWithoutAddress", "http://[v1.]/x.y", kNone}, Case{"ColonInFirstSegment", "a b:c", kNone},
        Case{"TwoAts", "http://a@b@c/x.y", kNone}, Case{"PortOfLetters", "http://h:8a/x.y", kNone},
        Case{"OpenBracket", "http://[::1/x.y", kNone}, Case{"TwoGaps", "http://[1::2::3]/x.y", kNone},
        Case{"GapOfNothing", "http://[1::2:3:4:5:6:7:8]/x.y", kNone}, Case{"LongGroup", "http://[12345::]/x.y", kNone},
        Case{"OctetTooLarge", "http://[::1.2.3.256]/x.y", kNone}, Case{"OctetWithZero", "http://[::01.2.3.4]/x", kNone},
        Case{"IPv6Zone", "http://[fe80::1%25eth0]/x.y", kNone}, Case{"BracketInPath", "http://h/[x].y", kNone},
        Case{"FutureWithoutVersion", "http://[v.a]/x.y", kNone}, Case{"TextAfterBracket", "http://[::1]x/y", kNone},
        Case{"Backslash", "http://h\\x.y", kNone}, Case{"Quote", "http://h/\"x.y", kNone},
        Case{"PathThatIsNoUtf8", "http://h/%FF.mp4", kNone}, Case{"EncodedSurrogate", "http://h/%ED%A0%80.x", kNone}),
    test::kCaseName);

TEST(UrlGrammarTest, SplitsIntoComponentsAndTellsEmptyFromAbsent) {
  const auto full = parseUrlReference("s://u@h:1/p%20q?#f");
  const auto bare = parseUrlReference("p");

  ASSERT_TRUE(full && bare);
  EXPECT_EQ(full->scheme, "s");
  EXPECT_EQ(full->authority, "u@h:1");
  EXPECT_EQ(full->path, "/p%20q");
  EXPECT_EQ(full->query, "");
  EXPECT_EQ(full->fragment, "f");
  EXPECT_EQ(bare->scheme, std::nullopt);
  EXPECT_EQ(bare->authority, std::nullopt);
  EXPECT_EQ(bare->path, "p");
  EXPECT_EQ(bare->query, std::nullopt);
  EXPECT_EQ(bare->fragment, std::nullopt);
}

TEST(UrlGrammarTest, AnAbsentUrlHasAnAbsentExtension) {
  EXPECT_EQ(TavloUtility::getFileExtensionFromUrl(std::nullopt), std::nullopt);
}

TEST(UrlGrammarTest, ANulInThePathStaysInTheExtension) {
  EXPECT_EQ(TavloUtility::getFileExtensionFromUrl("http://h/x.a%00b"), std::string("a\0b", 3));
  EXPECT_EQ(TavloUtility::getFileExtensionFromUrl(std::string("http://h/x.a\0b", 14)), std::nullopt);
}

// Long stretches are checked several bytes at a time.
TEST(UrlGrammarTest, EveryByteOfALongPathIsChecked) {
  constexpr std::size_t kLength = 40;
  for (std::size_t length = 1; length <= kLength; ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      std::string path(length, 'a');
      path[at] = 'Z';
      EXPECT_EQ(parseUrlReference(path)->path, path);

      for (const char refused : {' ', '"', '[', '^', '\x7F', '\x80', '\xFF', '\0'}) {
        path[at] = refused;
        EXPECT_FALSE(parseUrlReference(path)) << length << " " << at;
      }
    }
  }
}

TEST(UrlGrammarTest, AnEscapeMayBeginAnywhereInALongPathAndMustBeWhole) {
  constexpr std::size_t kLength = 40;
  for (std::size_t at = 0; at < kLength; ++at) {
    const std::string before(at, 'a');
    EXPECT_EQ(parseUrlReference(before + "%2f" + "bbbbbbbbb")->path, before + "%2f" + "bbbbbbbbb");
    EXPECT_EQ(parseUrlReference(before + "%2f%C3%a4")->path, before + "%2f%C3%a4");
    for (const char* const broken : {"%", "%2", "%2g", "%g2", "%%41", "%2/bbbbbbbb", "%-2bbbbbbbb"}) {
      EXPECT_FALSE(parseUrlReference(before + broken)) << before << broken;
    }
  }
}

TEST(UrlGrammarTest, AgreesWithAnIndependentGrammarOnGeneratedUrls) {
  const std::string count = std::to_string(test::figure(20'000, 200'000));

  const auto lines = test::splitLines(test::runOracle("extension.py", {count, std::to_string(test::seed())}));

  ASSERT_EQ(std::to_string(lines.size()), count);
  for (const std::string& line : lines) {
    const std::size_t tab = line.find('\t');
    const std::string url = test::fromHex(line.substr(0, tab));
    const std::string answer = line.substr(tab + 1);
    const Text expected = answer == "-" ? std::nullopt : Text(test::fromHex(answer));
    ASSERT_EQ(TavloUtility::getFileExtensionFromUrl(url), expected) << url;
  }
  test::reached("T14 extension", count + " URLs, no difference");
}

}  // namespace
}  // namespace tavlo
