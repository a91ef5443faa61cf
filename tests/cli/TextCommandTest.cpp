#include <gtest/gtest.h>

#include "tests/cli/ChildProgram.h"
#include "tests/support/CaseName.h"

namespace tavlo::cli::test {
namespace {

struct TextCase {
  const char* name;
  std::vector<std::string> arguments;
  std::string input;
  std::string out;
};

void PrintTo(const TextCase& row, std::ostream* stream) { *stream << row.name; }

class TextCommandTest : public testing::TestWithParam<TextCase> {};

TEST_P(TextCommandTest, PrintsOneLineAText) {
  EXPECT_EQ(run(GetParam().arguments, {.input = GetParam().input}), (Result{0, GetParam().out, ""}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextCommandTest,
    testing::ValuesIn(std::vector<TextCase>{
        {"DigestOfEachArgument",
         {"md5", "", "abc"},
         "",
         "d41d8cd98f00b204e9800998ecf8427e\n900150983cd24fb0d6963f7d28e17f72\n"},
        {"DigestOfTextOutsideAscii", {"md5", "é"}, "", "66ddcd97cfdeabb2f6fb8a999b4bc76f\n"},
        {"DigestOfEachLine",
         {"md5"},
         "\nabc\n",
         "d41d8cd98f00b204e9800998ecf8427e\n900150983cd24fb0d6963f7d28e17f72\n"},
        {"DigestEndsAtNul", {"md5"}, std::string("abc\0def", 7), "900150983cd24fb0d6963f7d28e17f72\n"},
        {"DigestAsJson", {"md5", "abc", "--json"}, "", "\"900150983cd24fb0d6963f7d28e17f72\"\n"},
        {"NoInputNoOutput", {"md5"}, "", ""},
        {"ExtensionOfPath", {"extension", "https://h/v/clip.MP4?q=a.b#c.d", "/c.tar.gz"}, "", "MP4\ngz\n"},
        {"NoExtensionIsAnEmptyLine", {"extension", "https://h/a.b/c"}, "", "\n"},
        {"NoUrlIsAbsent", {"extension", "a b"}, "", "(null)\n"},
        {"AbsentAsJson", {"--json", "extension", "a b", "/a"}, "", "null\n\"\"\n"},
        {"ExtensionOfEachLine", {"extension"}, "/a.mp4\na b\n/b.png", "mp4\n(null)\npng\n"},
        {"EncodedArgument", {"encode", "Start & Übersicht=1"}, "", "Start%20%26%20%C3%9Cbersicht%3D1\n"},
        {"EncodedEmptyText", {"encode", ""}, "", "\n"},
        {"EncodedLineKeepsCarriageReturn", {"encode"}, "a\r\nb", "a%0D\nb\n"},
        {"EncodedBytesOutsideUtf8", {"encode", "\xFF"}, "", "%FF\n"},
        {"EncodedAsJson", {"encode", "--json", "a\"b"}, "", "\"a%22b\"\n"},
        {"NamesOfCommandsAreTexts", {"encode", "md5", "encode", "id", "get"}, "", "md5\nencode\nid\nget\n"},
        {"BracketsAndPlusesAreTexts",
         {"encode", "[a,b]", "++", "{}", "[]"},
         "",
         "%5Ba%2Cb%5D\n%2B%2B\n%7B%7D\n%5B%5D\n"},
        {"ControlCharacterStaysAText", {"encode", "\x01", "\x01[a,b]"}, "", "%01\n%01%5Ba%2Cb%5D\n"},
        {"NegativeNumberIsAText", {"encode", "-5"}, "", "-5\n"},
        {"OptionsAfterDashesAreTexts", {"encode", "--", "--quiet", "-x", "--"}, "", "--quiet\n-x\n--\n"},
    }),
    tavlo::test::kCaseName);

TEST(TextCommandInputTest, LongInputIsReadWhole) {
  const std::string line(200000, 'a');

  EXPECT_EQ(run({"encode"}, {.input = line + "\n" + line + " "}), (Result{0, line + "\n" + line + "%20\n", ""}));
}

TEST(TextCommandInputTest, FolderAsStandardInputIsAnError) {
  EXPECT_EQ(run({"encode"}, {.inputPath = "/"}),
            (Result{1, "", "tavlo: cannot read standard input: Is a directory; redirect it from a file or a pipe\n"}));
}

TEST(TextCommandInputTest, ClosedStandardInputIsAnError) {
  EXPECT_EQ(
      run({"md5"}, {.inputClosed = true}),
      (Result{1, "", "tavlo: cannot read standard input: Bad file descriptor; redirect it from a file or a pipe\n"}));
}

}  // namespace
}  // namespace tavlo::cli::test
