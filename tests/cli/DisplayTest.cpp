#include <gtest/gtest.h>

#include "cli/Display.h"

namespace tavlo::cli {
namespace {

TEST(DisplayTest, PlainTextStaysAsItIs) {
  EXPECT_EQ(displayed(""), "");
  EXPECT_EQ(displayed("Zoë & 日本 😀 ~"), "Zoë & 日本 😀 ~");
}

TEST(DisplayTest, WhatATerminalObeysIsEscaped) {
  EXPECT_EQ(displayed("a\nb\rc\td"), "a\\nb\\rc\\td");
  EXPECT_EQ(displayed(std::string("\0\x1b[31m\x7f", 7)), "\\u{0}\\u{1b}[31m\\u{7f}");
  EXPECT_EQ(displayed("\xC2\x9B"), "\\u{9b}");  // the other way to begin a sequence
  EXPECT_EQ(displayed(std::string("\xE2\x80") + "\xAE\xE2\x80\xA8"),
            "\\u{202e}\\u{2028}");  // turns the direction, ends the line
  EXPECT_EQ(displayed("\xEF\xBB\xBF"), "\\u{feff}");
}

TEST(DisplayTest, BytesThatAreNoUtf8AreEscapedOneByOne) {
  EXPECT_EQ(displayed("a\xFF\xC3z\xE2\x82"), "a\\xff\\xc3z\\xe2\\x82");
}

TEST(DisplayTest, BackslashesAndQuotationMarksAreToldFromEscapes) {
  EXPECT_EQ(displayed("\\n\""), "\\\\n\"");
  EXPECT_EQ(harmless("\\n\"\n"), "\\n\"\\n");
  EXPECT_EQ(quoted("\\n\""), "\"\\\\n\\\"\"");
  EXPECT_EQ(quoted(""), "\"\"");
}

TEST(DisplayTest, ShortenedTextEndsInAnEllipsisOnlyWhenItWasCut) {
  EXPECT_EQ(shortened("äöü", 3), "äöü");
  EXPECT_EQ(shortened("äöüß", 3), "äö…");
  EXPECT_EQ(shortened("äö", 1), "…");
  EXPECT_EQ(shortened("", 0), "");
}

TEST(DisplayTest, ColumnsAreAsWideAsTheirCodePoints) {
  EXPECT_EQ(table({{{.text = "ü"}, {.text = "b"}}, {{.text = "ccc"}, {.text = "d"}}}), "ü    b\nccc  d\n");
}

TEST(DisplayTest, EmptyCellsLeaveNoBlanksAtTheEnd) {
  EXPECT_EQ(table({{{.text = "a"}, {}, {.text = "c"}}, {{.text = "a"}, {.text = "bb"}, {}}, {{}, {}, {}}}),
            "a      c\na  bb\n\n");
  EXPECT_EQ(table({}), "");
}

TEST(DisplayTest, StyleLeavesTheColumnsWhereTheyAre) {
  EXPECT_EQ(table({headings({"a", "b"}), {{.text = "ccc", .style = Style::faint}, {.text = "d"}}},
                  {.styled = true, .width = {}}),
            "\x1b[1ma\x1b[0m    \x1b[1mb\x1b[0m\n\x1b[2mccc\x1b[0m  d\n");
}

TEST(DisplayTest, WidestColumnsGiveWayFirst) {
  const std::vector<std::vector<Cell>> rows{
      {{.text = "12345"}, {.text = std::string(20, 'x')}, {.text = std::string(30, 'y')}}};

  EXPECT_EQ(table(rows, {.styled = false, .width = 59}),
            "12345  " + std::string(20, 'x') + "  " + std::string(30, 'y') + "\n");
  EXPECT_EQ(table(rows, {.styled = false, .width = 58}),
            "12345  " + std::string(20, 'x') + "  " + std::string(28, 'y') + "…\n");
  EXPECT_EQ(table(rows, {.styled = false, .width = 39}),
            "12345  " + std::string(14, 'x') + "…  " + std::string(14, 'y') + "…\n");
  EXPECT_EQ(table(rows, {.styled = false, .width = 1}), "12345  xxxxxxx…  yyyyyyy…\n");
}

}  // namespace
}  // namespace tavlo::cli
