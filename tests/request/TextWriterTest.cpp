#include <gtest/gtest.h>

#include <limits>

#include "request/TextWriter.h"

namespace tavlo {
namespace {

constexpr std::size_t kRoom = TextWriter::kRoom;

TEST(TextWriterTest, GivesWhatWasWrittenInOrderAndIsEmptyThen) {
  TextWriter writer;

  writer.append("key");
  writer.append('=');
  writer.appendUrlEncoded("a b");
  writer.appendInteger(std::numeric_limits<std::int32_t>::min());

  EXPECT_FALSE(writer.empty());
  EXPECT_EQ(writer.take(), "key=a%20b-2147483648");
  EXPECT_TRUE(writer.empty());
  EXPECT_EQ(writer.take(), "");
}

TEST(TextWriterTest, PartsOfNothingAddNothing) {
  TextWriter writer;

  writer.append(std::string_view());
  writer.appendUrlEncoded(std::string_view());

  EXPECT_TRUE(writer.empty());
  EXPECT_EQ(writer.take(), "");
}

// Each kind of part meets the end of the writer's own room at each of the last bytes before it, and beyond.
TEST(TextWriterTest, PartsThatDoNotFitAnyMoreComeBehindTheOthers) {
  for (std::size_t before = kRoom - 20; before <= kRoom + 2; ++before) {
    const std::string start(before, 's');
    TextWriter writer;

    writer.append(start);
    writer.append("text");
    EXPECT_EQ(writer.take(), start + "text");

    writer.append(start);
    writer.append('c');
    EXPECT_EQ(writer.take(), start + "c");

    writer.append(start);
    writer.appendUrlEncoded("&&&");
    EXPECT_FALSE(writer.empty());
    EXPECT_EQ(writer.take(), start + "%26%26%26");

    writer.append(start);
    writer.appendInteger(-2147483647);
    writer.append("end");
    EXPECT_EQ(writer.take(), start + "-2147483647end");
  }
}

TEST(TextWriterTest, TextsOfManyTimesItsRoomAreWhole) {
  const std::string plain(5 * kRoom + 7, 'p');
  std::string escapes;
  for (std::size_t i = 0; i < plain.size(); ++i) escapes += "%20";
  TextWriter writer;

  writer.append("a");
  writer.append(plain);
  writer.append("b");
  writer.appendUrlEncoded(plain);
  writer.append("c");
  writer.appendUrlEncoded(std::string(plain.size(), ' '));

  EXPECT_EQ(writer.take(), "a" + plain + "b" + plain + "c" + escapes);
}

TEST(TextWriterTest, AViewIsWhatWasWrittenSinceTheWriterWasCleared) {
  const std::string plain(2 * kRoom, 'p');
  TextWriter writer;

  EXPECT_EQ(writer.view(), "");
  writer.append("short");
  EXPECT_EQ(writer.view(), "short");
  writer.append(plain);
  EXPECT_EQ(writer.view(), "short" + plain);
  writer.append("more");
  EXPECT_EQ(writer.view(), "short" + plain + "more");
  writer.clear();
  EXPECT_TRUE(writer.empty());
  EXPECT_EQ(writer.view(), "");
  writer.append("after");
  EXPECT_EQ(writer.take(), "after");
}

}  // namespace
}  // namespace tavlo
