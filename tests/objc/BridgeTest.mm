#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#import "platform/apple/Bridge.h"
#include "tests/objc/PoolTest.h"
#include "tests/support/CaseName.h"

namespace tavlo::apple_platform {
namespace {

using namespace std::string_view_literals;

class ObjCBridge : public test::PoolTest {};

// Unit by unit, as an app's own string may hold them.
NSString* utf16(std::u16string_view units) {
  NSMutableString* const string = [NSMutableString string];
  for (const char16_t unit : units) [string appendFormat:@"%C", static_cast<unichar>(unit)];
  return string;
}

struct TextCase {
  const char* name;
  std::u16string_view utf16;
  std::string_view utf8;
};

class ObjCBridgeTexts : public test::PoolTest, public testing::WithParamInterface<TextCase> {};

TEST_P(ObjCBridgeTexts, GoBothWays) {
  const auto& [name, units, utf8] = GetParam();

  NSString* const string = stringOf(utf8);

  EXPECT_EQ(textOf(utf16(units)), Text(utf8));
  EXPECT_TRUE([string isEqualToString:utf16(units)]);
  EXPECT_EQ([string length], units.size());
}

INSTANTIATE_TEST_SUITE_P(
    ObjC, ObjCBridgeTexts,
    testing::Values(
        TextCase{"Empty", u"", ""}, TextCase{"Ascii", u"a~", "a~"}, TextCase{"InnerNul", u"a\0b"sv, "a\0b"sv},
        TextCase{"OnlyNul", u"\0"sv, "\0"sv}, TextCase{"TwoBytes", u"\u07FF", "\xDF\xBF"},
        TextCase{"ThreeBytes", u"\u20AC", "\xE2\x82\xAC"}, TextCase{"ByteOrderMark", u"\uFEFFx", "\xEF\xBB\xBFx"},
        TextCase{"Decomposed", u"e\u0301", "e\xCC\x81"}, TextCase{"Pair", u"\U0001F600", "\xF0\x9F\x98\x80"},
        TextCase{"LastPair", u"\U0010FFFF", "\xF4\x8F\xBF\xBF"}, TextCase{"LoneFirst", u"\xD83Dx", "\xED\xA0\xBDx"},
        TextCase{"LoneFirstAtTheEnd", u"x\xD83D", "x\xED\xA0\xBD"}, TextCase{"LoneSecond", u"\xDE00x", "\xED\xB8\x80x"},
        TextCase{"WrongOrder", u"\xDE00\xD83D", "\xED\xB8\x80\xED\xA0\xBD"},
        TextCase{"FirstBeforeAPair", u"\xD83D\U0001F600", "\xED\xA0\xBD\xF0\x9F\x98\x80"},
        TextCase{"LoneFirstAndNul", u"\0\xD83D"sv, "\0\xED\xA0\xBD"sv},
        TextCase{"Noncharacter", u"\uFFFF", "\xEF\xBF\xBF"}),
    test::kCaseName);

TEST_F(ObjCBridge, BytesThatAreNoUtf8BecomeReplacements) {
  EXPECT_EQ(textOf(stringOf("a\xFF"
                            "b\xC3")),
            Text("a\xEF\xBF\xBD"
                 "b\xEF\xBF\xBD"));
}

TEST_F(ObjCBridge, AbsentIsNilBothWays) {
  EXPECT_EQ(textOf(nil), std::nullopt);
  EXPECT_EQ(stringOfText(std::nullopt), nil);
  EXPECT_EQ(valueOf(nil), std::nullopt);
  EXPECT_EQ(objectOf(std::nullopt), nil);
  EXPECT_EQ([stringOfText(Text("")) length], 0U);
}

TEST_F(ObjCBridge, WhatIsNoStringCountsByItsTextForm) {
  EXPECT_EQ(textOf([NSNumber numberWithInt:-7]), Text("-7"));
  EXPECT_EQ(textOf([NSNumber numberWithBool:YES]), Text("1"));
  EXPECT_EQ(textOf([NSNull null]), Text("<null>"));
}

struct ValueCase {
  const char* name;
  Value value;
};

class ObjCBridgeValues : public test::PoolTest, public testing::WithParamInterface<ValueCase> {};

TEST_P(ObjCBridgeValues, ComeBackEqual) {
  const Value& value = GetParam().value;

  EXPECT_EQ(valueOf(objectOf(value)), std::optional<Value>(value));
}

Integer wide(std::int64_t high, std::uint64_t low) { return {.high = high, .low = low}; }

Value url(std::string text, std::optional<Value> base = std::nullopt) {
  return Value::url({.text = std::move(text), .base = std::move(base)});
}

INSTANTIATE_TEST_SUITE_P(
    ObjC, ObjCBridgeValues,
    testing::Values(
        ValueCase{"Null", Value()}, ValueCase{"True", Value(true)}, ValueCase{"False", Value(false)},
        ValueCase{"Zero", Value(0)}, ValueCase{"One", Value(1)}, ValueCase{"Negative", Value(-1)},
        ValueCase{"LeastSigned", Value(std::numeric_limits<std::int64_t>::min())},
        ValueCase{"GreatestSigned", Value(std::numeric_limits<std::int64_t>::max())},
        ValueCase{"AboveSigned", Value(std::uint64_t{1} << 63U)},
        ValueCase{"GreatestUnsigned", Value(std::numeric_limits<std::uint64_t>::max())},
        ValueCase{"SixtyFiveBits", Value(wide(1, 0))}, ValueCase{"NegativeSixtyFiveBits", Value(wide(-2, 5))},
        ValueCase{"Real", Value(0.1)}, ValueCase{"WholeReal", Value(2.0)}, ValueCase{"NegativeZero", Value(-0.0)},
        ValueCase{"Infinity", Value(std::numeric_limits<double>::infinity())},
        ValueCase{"Narrow", Value(Real{.value = 0.5, .narrow = true})}, ValueCase{"Date", Value(Date{757382400.25})},
        ValueCase{"EarlyDate", Value(Date{-63114076800.0})}, ValueCase{"EmptyText", Value("")},
        ValueCase{"Text", Value("Zo\xC3\xAB")}, ValueCase{"EmptyData", Value::data("")},
        ValueCase{"Data", Value::data("\0\xFF"sv)}, ValueCase{"EmptyList", Value::list({})},
        ValueCase{"List", Value::list({Value("1"), Value(1), Value(true), Value(1.0)})},
        ValueCase{"Set", Value::set({Value("a"), Value(2)})}, ValueCase{"EmptyMap", Value::map({})},
        ValueCase{"Map", Value::map({{Value("count"), Value(3)}, {Value("list"), Value::list({Value()})}})},
        ValueCase{"MapOfManyKinds", Value::map({{Value(7), Value("n")}, {Value(Date{1}), Value(true)}})},
        ValueCase{"Url", url("http://h/v.mp4?q=1")}, ValueCase{"UrlOnABase", url("v.mp4", url("http://h/d/"))}),
    test::kCaseName);

TEST_F(ObjCBridge, TruthValuesAreNoNumbers) {
  EXPECT_EQ(valueOf([NSNumber numberWithBool:YES]), std::optional<Value>(true));
  EXPECT_EQ(valueOf([NSNumber numberWithBool:NO]), std::optional<Value>(false));
  EXPECT_EQ(valueOf([NSNumber numberWithInt:1]), std::optional<Value>(1));
  EXPECT_EQ(valueOf([NSNumber numberWithChar:1]), std::optional<Value>(1));
  EXPECT_EQ(valueOf([NSNumber numberWithUnsignedChar:0]), std::optional<Value>(0));
}

TEST_F(ObjCBridge, EachKindHasItsClass) {
  EXPECT_TRUE([objectOf(Value("a")) isKindOfClass:[NSString class]]);
  EXPECT_TRUE([objectOf(Value(1)) isKindOfClass:[NSNumber class]]);
  EXPECT_TRUE([objectOf(Value(wide(1, 0))) isKindOfClass:[NSDecimalNumber class]]);
  EXPECT_EQ(std::string([objectOf(Value(1.5)) objCType]), "d");
  EXPECT_EQ(std::string([objectOf(Value(Real{.value = 1.5, .narrow = true})) objCType]), "f");
  EXPECT_TRUE([objectOf(Value::data("a")) isKindOfClass:[NSData class]]);
  EXPECT_TRUE([objectOf(Value(Date{})) isKindOfClass:[NSDate class]]);
  EXPECT_TRUE([objectOf(Value::list({})) isKindOfClass:[NSArray class]]);
  EXPECT_TRUE([objectOf(Value::set({})) isKindOfClass:[NSSet class]]);
  EXPECT_TRUE([objectOf(Value::map({})) isKindOfClass:[NSDictionary class]]);
  EXPECT_TRUE([objectOf(url("http://h")) isKindOfClass:[NSURL class]]);
  EXPECT_EQ(objectOf(Value()), [NSNull null]);
  EXPECT_EQ(objectOf(Value(Uid{0})), [NSNull null]);
  EXPECT_TRUE([objectOf(Value(Uid{9})) isEqual:[NSNumber numberWithInt:9]]);
}

TEST_F(ObjCBridge, ObjectsOfNamedClassesShowTheirFields) {
  const Value record = Value::object({.className = "AdRecord", .fields = {{Value("id"), Value(7)}}});

  NSDictionary* const fields = objectOf(record);

  EXPECT_EQ([fields count], 2U);
  EXPECT_TRUE([[fields objectForKey:@"$class"] isEqual:@"AdRecord"]);
  EXPECT_TRUE([[fields objectForKey:@"id"] isEqual:[NSNumber numberWithInt:7]]);
}

TEST_F(ObjCBridge, AnObjectOfAnotherClassKeepsTheNameOfItsClass) {
  const auto value = valueOf([[[NSLock alloc] init] autorelease]);

  ASSERT_TRUE(value && value->ifObject());
  EXPECT_EQ(value->ifObject()->className, "NSLock");
}

TEST_F(ObjCBridge, FractionsOfDecimalNumbersAreReals) {
  EXPECT_EQ(valueOf([NSDecimalNumber decimalNumberWithString:@"0.5"]), std::optional<Value>(0.5));
  EXPECT_EQ(valueOf([NSDecimalNumber decimalNumberWithString:@"-12"]), std::optional<Value>(-12));
}

TEST_F(ObjCBridge, SharedContentsStaySharedHoweverOftenTheyAreMet) {
  Value value = Value::list({Value("x")});
  for (int level = 0; level < 60; ++level) value = Value::list({value, value});

  NSArray* const array = objectOf(value);
  const auto back = valueOf(array);

  EXPECT_EQ([array objectAtIndex:0], [array objectAtIndex:1]);
  EXPECT_EQ(back, std::optional<Value>(value));
}

TEST_F(ObjCBridge, ACollectionInItselfIsNullThere) {
  NSMutableArray* const array = [NSMutableArray arrayWithObject:@"a"];
  [array addObject:array];

  const auto value = valueOf(array);

  [array removeLastObject];
  EXPECT_EQ(value, std::optional<Value>(Value::list({Value("a"), Value()})));
}

TEST_F(ObjCBridge, WhatIsNestedTooDeepIsNullThere) {
  NSArray* array = [NSArray array];
  for (int level = 0; level < 100000; ++level) array = [NSArray arrayWithObject:array];

  auto value = valueOf(array);

  int levels = 0;
  for (; value->ifList(); ++levels) value = Value(value->ifList()->front());
  EXPECT_EQ(levels, 512);
  EXPECT_TRUE(value->isNull());
}

TEST_F(ObjCBridge, ATextThatThePlatformTakesForNoUrlStaysAText) {
  EXPECT_TRUE([objectOf(url("no url: \x01")) isKindOfClass:[NSString class]] ||
              [objectOf(url("no url: \x01")) isKindOfClass:[NSURL class]]);
}

}  // namespace
}  // namespace tavlo::apple_platform
