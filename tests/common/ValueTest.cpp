#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "common/Value.h"
#include "common/ValueNumbers.h"

namespace tavlo {
namespace {

using Kind = Value::Kind;
using Order = std::strong_ordering;

// A pointer is no truth value.
static_assert(!std::is_constructible_v<Value, const std::string*>);
static_assert(!std::is_constructible_v<Value, const void*>);
static_assert(!std::is_constructible_v<Value, std::nullptr_t>);
static_assert(std::is_constructible_v<Value, bool>);

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kSmallest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest64 = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kAllOnes = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kTwoTo53 = std::uint64_t{1} << 53U;
constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63U;

Value narrow(double value) { return Real{.value = value, .narrow = true}; }
Value wide(std::int64_t high, std::uint64_t low) { return Integer{.high = high, .low = low}; }
Value relative(const char* text, const char* base) {
  return Value::url({.text = text, .base = Value::url({.text = base, .base = std::nullopt})});
}
Value object(const char* name, ValueMap fields) { return Value::object({.className = name, .fields = fields}); }

struct Named {
  const char* name;
  Value value;
};

// Each one less than all that follow. Made anew on every call, so that two calls share no contents.
std::vector<Named> ascending() {
  return {
      {"null", Value()},
      {"false", false},
      {"true", true},
      {"negative no number", -kNan},
      {"no number", kNan},
      {"narrow no number", narrow(kNan)},
      {"-infinity", -kInfinity},
      {"real below -2^127", -2e38},
      {"smallest integer", wide(kSmallest64, 0)},
      {"real -2^127", std::ldexp(-1.0, 127)},
      {"-2^64-1", wide(-2, kAllOnes)},
      {"-2^64", wide(-1, 0)},
      {"real -2^64", std::ldexp(-1.0, 64)},
      {"-2^64+1", wide(-1, 1)},
      {"-2^63-1", wide(-1, kTwoTo63 - 1)},
      {"-2^63", kSmallest64},
      {"real -2^63", std::ldexp(-1.0, 63)},
      {"-2^63+1", kSmallest64 + 1},
      {"-2^53-1", -static_cast<std::int64_t>(kTwoTo53) - 1},
      {"real -2^53", std::ldexp(-1.0, 53)},
      {"-2", -2},
      {"real -1.5", -1.5},
      {"-1", -1},
      {"real -1", -1.0},
      {"narrow -1", narrow(-1)},
      {"real -0.5", -0.5},
      {"0", 0},
      {"real -0.0", -0.0},
      {"narrow -0.0", narrow(-0.0)},
      {"real 0.0", 0.0},
      {"narrow 0.0", narrow(0)},
      {"smallest real above 0", std::numeric_limits<double>::denorm_min()},
      {"1", 1},
      {"2^53", kTwoTo53},
      {"real 2^53", std::ldexp(1.0, 53)},
      {"2^53+1", kTwoTo53 + 1},
      {"real 2^53+2", std::ldexp(1.0, 53) + 2},
      {"real below 2^63", std::ldexp(1.0, 63) - 1024},
      {"2^63-1", kLargest64},
      {"2^63", kTwoTo63},
      {"real 2^63", std::ldexp(1.0, 63)},
      {"2^63+1", kTwoTo63 + 1},
      {"2^64-1", kAllOnes},
      {"2^64", wide(1, 0)},
      {"real 2^64", std::ldexp(1.0, 64)},
      {"2^64+1", wide(1, 1)},
      {"largest integer", wide(kLargest64, kAllOnes)},
      {"real 2^127", std::ldexp(1.0, 127)},
      {"infinity", kInfinity},
      {"date no number", Date{.seconds = kNan}},
      {"date before", Date{.seconds = -1.5}},
      {"date -0.0", Date{.seconds = -0.0}},
      {"date 0.0", Date{.seconds = 0}},
      {"empty text", ""},
      {"text U+0000", std::string(1, '\0')},
      {"a", "a"},
      {"a U+0000", std::string("a\0", 2)},
      {"ab", "ab"},
      {"b", "b"},
      {"long text", std::string(100, 'c')},
      {"longer text", std::string(100, 'c') + "d"},
      {"text U+00E9", "\xC3\xA9"},
      {"text U+FFFF", "\xEF\xBF\xBF"},
      {"text U+10000", "\xF0\x90\x80\x80"},
      {"empty data", Value::data("")},
      {"data 7F", Value::data("\x7F")},
      {"data 80", Value::data("\x80")},
      {"url a", Value::url({.text = "a", .base = std::nullopt})},
      {"url a on a", relative("a", "a")},
      {"url a on b", relative("a", "b")},
      {"url b", Value::url({.text = "b", .base = std::nullopt})},
      {"uid 0", Uid{.index = 0}},
      {"largest uid", Uid{.index = kAllOnes}},
      {"empty list", Value::list({})},
      {"list 1", Value::list({1})},
      {"list 1 1", Value::list({1, 1})},
      {"list 1 2", Value::list({1, 2})},
      {"list 2", Value::list({2})},
      {"list of a list", Value::list({Value::list({})})},
      {"empty set", Value::set({})},
      {"set 3 1", Value::set({3, 1})},
      {"set 1 3 4", Value::set({1, 3, 4})},
      {"set 1 4", Value::set({4, 1})},
      {"set 2", Value::set({2})},
      {"empty map", Value::map({})},
      {"map a 1", Value::map({{"a", 1}})},
      {"map a 1, b 0", Value::map({{"b", 0}, {"a", 1}})},
      {"map a 2", Value::map({{"a", 2}})},
      {"map b 0", Value::map({{"b", 0}})},
      {"object A", object("A", {})},
      {"object A x 1", object("A", {{"x", 1}})},
      {"object A x 2", object("A", {{"x", 2}})},
      {"object B", object("B", {})},
  };
}

TEST(Value, OrderIsTotalAndAsListed) {
  const auto left = ascending();
  const auto right = ascending();

  for (std::size_t i = 0; i < left.size(); ++i) {
    for (std::size_t j = 0; j < right.size(); ++j) {
      const Order order = left[i].value <=> right[j].value;

      EXPECT_EQ(order, i <=> j) << left[i].name << " and " << right[j].name;
      EXPECT_EQ(left[i].value == right[j].value, i == j) << left[i].name << " and " << right[j].name;
    }
  }
}

TEST(Value, NumbersTellExactlyTheUnequalApart) {
  const auto left = ascending();
  const auto right = ascending();
  ValueNumbers numbers;

  for (std::size_t i = 0; i < left.size(); ++i) EXPECT_EQ(numbers.of(left[i].value), numbers.of(left[i].value));

  for (std::size_t i = 0; i < left.size(); ++i) {
    for (std::size_t j = 0; j < right.size(); ++j) {
      EXPECT_EQ(numbers.of(left[i].value) == numbers.of(right[j].value), i == j)
          << left[i].name << " and " << right[j].name;
    }
  }
}

TEST(Value, NumbersTellAUrlWithABaseFromATextThatLooksLikeOne) {
  ValueNumbers numbers;
  const Value based = relative("a", "http://h");

  // The words that stand for "with a base" and for the base's own number, whichever that is.
  for (char base = 0; base < 8; ++base) {
    std::string text = std::string("\1\0\0\0\0\0\0\0", 8) + base + std::string(7, '\0') + "a";
    const Value plain = Value::url({.text = text, .base = std::nullopt});
    EXPECT_NE(numbers.of(plain), numbers.of(based)) << int{base};
  }
}

TEST(Value, SetsAndMapsAreEqualInAnyOrder) {
  const Value set = Value::set({1, "a", Value::set({2, 3})});
  const Value sameSet = Value::set({Value::set({3, 2}), "a", 1});
  const Value map = Value::map({{"a", set}, {"b", 2}});
  const Value sameMap = Value::map({{"b", 2}, {"a", sameSet}});
  ValueNumbers numbers;

  EXPECT_EQ(set, sameSet);
  EXPECT_EQ(map, sameMap);
  EXPECT_EQ(numbers.of(set), numbers.of(sameSet));
  EXPECT_EQ(numbers.of(map), numbers.of(sameMap));
  EXPECT_NE(Value::set({1, 1}), Value::set({1}));
  EXPECT_NE(Value::list({1, 2}), Value::list({2, 1}));
}

TEST(Value, OnlyTheAccessorOfItsKindAnswers) {
  const Value values[] = {Value(),
                          true,
                          1,
                          1.5,
                          Date{},
                          "text",
                          Value::data("data"),
                          Value::url({.text = "u", .base = std::nullopt}),
                          Uid{},
                          Value::list({1}),
                          Value::set({1}),
                          Value::map({{"k", 1}}),
                          object("A", {})};
  std::size_t position = 0;

  for (const Value& value : values) {
    const std::vector<bool> answers = {value.isNull(),
                                       value.ifBoolean() != nullptr,
                                       value.ifInteger() != nullptr,
                                       value.ifReal() != nullptr,
                                       value.ifDate() != nullptr,
                                       value.ifText().has_value(),
                                       value.ifData().has_value(),
                                       value.ifUrl() != nullptr,
                                       value.ifUid() != nullptr,
                                       value.ifList() != nullptr,
                                       value.ifSet() != nullptr,
                                       value.ifMap() != nullptr,
                                       value.ifObject() != nullptr};
    std::vector<bool> expected(13, false);
    expected[position] = true;

    EXPECT_EQ(answers, expected) << position;
    EXPECT_EQ(static_cast<std::size_t>(value.kind()), position);
    ++position;
  }
  EXPECT_EQ(position, 13U);
}

TEST(Value, CopiesShareTheirContents) {
  const Value list = Value::list({1});
  const Value copy = list;
  const Value other = Value::list({1});

  EXPECT_EQ(copy.identity(), list.identity());
  EXPECT_NE(other.identity(), list.identity());
  EXPECT_EQ(Value(1).identity(), nullptr);
  EXPECT_EQ(Value().identity(), nullptr);
}

enum class Container { list, set, map };

// Two to the power of `levels` values, in as many contents as there are levels.
Value doubled(Container container, int levels) {
  Value value = std::string(1000, 'x');
  for (int i = 0; i < levels; ++i) {
    switch (container) {
      case Container::list: value = Value::list({value, value}); break;
      case Container::set: value = Value::set({value, value}); break;
      case Container::map: value = Value::map({{"a", value}, {"b", value}}); break;
    }
  }
  return value;
}

// Without what was found before these would take longer than the machine lasts.
TEST(Value, SharedContentsAreComparedOnce) {
  for (const Container container : {Container::list, Container::set, Container::map}) {
    const Value value = doubled(container, 100);
    const Value same = doubled(container, 100);
    const Value higher = doubled(container, 101);
    ValueNumbers numbers;

    EXPECT_EQ(value, same);
    EXPECT_NE(value, higher);
    EXPECT_EQ(numbers.of(value), numbers.of(same));
    EXPECT_NE(numbers.of(value), numbers.of(higher));
  }
}

// Two lists that pair every copy with every other: pair by pair this is the copies squared times their size.
TEST(Value, CopiesFoundEqualCountAsOne) {
  constexpr std::size_t kCopies = 500;
  ValueList copies;
  for (std::size_t i = 0; i < kCopies; ++i) copies.push_back(Value::list(ValueList(2000, 1)));
  ValueList left;
  ValueList right;
  for (std::size_t i = 0; i < kCopies * kCopies; ++i) {
    left.push_back(copies[i / kCopies]);
    right.push_back(copies[i % kCopies]);
  }

  EXPECT_EQ(Value::list(left), Value::list(right));
}

}  // namespace
}  // namespace tavlo
