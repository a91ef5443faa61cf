#include <gtest/gtest.h>

#include <limits>

#include "cli/Json.h"

namespace tavlo::cli {
namespace {

using Kind = JsonNode::Kind;

TEST(JsonTest, EveryKindIsReadWithItsLine) {
  const JsonNode root = parseJson("\n{\"a\": [\n 1\n,\ntrue, null\n],\r\n\t\"b\" :\n \"ü\\n\", \"b\": -2.5e1}");

  ASSERT_EQ(root.kind, Kind::object);
  EXPECT_EQ(root.line, 2U);
  ASSERT_EQ(root.members.size(), 3U);

  const JsonNode& list = root.members[0].value;
  EXPECT_EQ(root.members[0].key, "a");
  EXPECT_EQ(root.members[0].line, 2U);
  ASSERT_EQ(list.kind, Kind::list);
  EXPECT_EQ(list.line, 2U);
  ASSERT_EQ(list.items.size(), 3U);
  EXPECT_EQ(list.items[0].kind, Kind::integer);
  EXPECT_EQ(list.items[0].line, 3U);
  EXPECT_EQ(list.items[0].scalar, Value(1));
  EXPECT_EQ(list.items[1].line, 5U);
  EXPECT_EQ(list.items[1].scalar, Value(true));
  EXPECT_EQ(list.items[2].kind, Kind::null);

  EXPECT_EQ(root.members[1].key, "b");
  EXPECT_EQ(root.members[1].line, 7U);
  EXPECT_EQ(root.members[1].value.line, 8U);
  EXPECT_EQ(root.members[1].value.scalar, Value("ü\n"));
  EXPECT_EQ(root.members[2].key, "b");
  EXPECT_EQ(root.members[2].value.kind, Kind::real);
  EXPECT_EQ(root.members[2].value.scalar, Value(-25.0));
}

TEST(JsonTest, ByteOrderMarkIsAccepted) {
  EXPECT_EQ(parseJson("\xEF\xBB\xBF\n7").scalar, Value(7));
  EXPECT_EQ(parseJson("\xEF\xBB\xBF\n7").line, 2U);
}

TEST(JsonTest, IntegersOfUpTo128BitsKeepTheirDigits) {
  for (const std::string digits :
       {"0", "-1", "9223372036854775807", "-9223372036854775808", "9223372036854775808", "18446744073709551615",
        "18446744073709551616", "-9223372036854775809", "-18446744073709551616", "123456789012345678901234567890",
        "170141183460469231731687303715884105727", "-170141183460469231731687303715884105728"}) {
    EXPECT_EQ(toJson(parseJson(digits).scalar), digits);
  }
}

TEST(JsonTest, LongerIntegersAreRefused) {
  for (const std::string digits :
       {"170141183460469231731687303715884105728", "-170141183460469231731687303715884105729",
        "340282366920938463463374607431768211456", "1000000000000000000000000000000000000000000000000"}) {
    try {
      static_cast<void>(parseJson("\n[\n" + digits + "\n]"));
      FAIL() << digits;
    } catch (const JsonError& error) {
      EXPECT_EQ(error.line(), 3U);
      EXPECT_STREQ(error.what(), "[0]: expected an integer of at most 128 bits");
    }
  }
}

TEST(JsonTest, NestingIsLimited) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };

  EXPECT_EQ(parseJson(nested(64)).kind, Kind::list);
  EXPECT_THROW(static_cast<void>(parseJson(nested(65))), JsonError);
  EXPECT_THROW(static_cast<void>(parseJson(std::string(1000000, '['))), JsonError);
}

TEST(JsonTest, ValuesAreWrittenInOneLineInTheirOwnOrder) {
  const Value value = Value::map({{"z", Value::list({1, true, Value(), -2.5, 3.0})},
                                  {"a", Value::set({"x"})},
                                  {"empty", Value::map(ValueMap())},
                                  {"none", Value::list({})}});

  EXPECT_EQ(toJson(value), R"({"z":[1,true,null,-2.5,3.0],"a":["x"],"empty":{},"none":[]})");
}

TEST(JsonTest, TextsAreEscapedNoMoreThanNeeded) {
  EXPECT_EQ(toJson("a/ü😀\x7f"), "\"a/ü😀\x7f\"");
  EXPECT_EQ(toJson("\"\\\b\f\n\r\t\x01"), R"("\"\\\b\f\n\r\t\u0001")");
  EXPECT_EQ(toJson(std::string("\0", 1)), R"("\u0000")");
}

TEST(JsonTest, BytesThatAreNoUtf8BecomeReplacementCharacters) {
  EXPECT_EQ(toJson("a\xFFz"), "\"a\uFFFDz\"");
  EXPECT_EQ(toJson("\xE2\x82"), "\"\uFFFD\"");
  EXPECT_EQ(toJson(Value::map({{"\xFF", 1}})), "{\"\uFFFD\":1}");
}

TEST(JsonTest, KindsThatJsonDoesNotKnowAreWrittenAsTheirTextForm) {
  EXPECT_EQ(toJson(Value::data("ab")), "\"ab\"");
  EXPECT_EQ(toJson(Date{.seconds = 0}), "\"2001-01-01 00:00:00 +0000\"");
  EXPECT_EQ(toJson(std::numeric_limits<double>::infinity()), "null");
}

}  // namespace
}  // namespace tavlo::cli
