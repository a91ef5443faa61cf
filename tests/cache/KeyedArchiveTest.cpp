// What each kind of object is decoded to, put together by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "tests/cache/ArchiveBytes.h"
#include "tests/common/RawPropertyList.h"
#include "tests/support/Python.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveBytes;
using test::archiveOf;
using test::classObject;
using test::decodeArchive;
using test::propertyListBytes;
using test::uid;

// The fields of object 1, whose class is object 2; objects 3 and 4 are texts, object 5 a URL.
Value decoded(const char* className, std::vector<ValueMap::Entry> fields) {
  fields.emplace_back("$class", uid(2));
  return decodeArchive(archiveBytes({Value::map(ValueMap(fields)), classObject(className), "three", "four",
                                     Value::map({{"$class", uid(6)}, {"NS.base", uid(0)}, {"NS.relative", uid(3)}}),
                                     classObject("NSURL")}))
      .value();
}

TEST(KeyedArchive, KnownClassesAreValuesOfTheirKinds) {
  const Value list = Value::list({uid(3), uid(4), uid(3)});
  const Value keys = Value::list({uid(3), uid(4)});
  const Value values = Value::list({uid(4), uid(0)});
  const Value map = Value::map({{"three", "four"}, {"four", uid(0)}});
  const Value base = Value::url({.text = "three", .base = {}});

  EXPECT_EQ(decoded("NSNull", {}), Value());
  EXPECT_EQ(decoded("NSString", {{"NS.string", "text"}}), Value("text"));
  EXPECT_EQ(decoded("NSMutableString", {{"NS.string", ""}}), Value(""));
  EXPECT_EQ(decoded("NSData", {{"NS.data", Value::data("\x01")}}), Value::data("\x01"));
  EXPECT_EQ(decoded("NSMutableData", {{"NS.data", Value::data("")}}), Value::data(""));
  EXPECT_EQ(decoded("NSDate", {{"NS.time", -1.5}}), Value(Date{.seconds = -1.5}));
  EXPECT_EQ(decoded("NSArray", {{"NS.objects", list}}), Value::list({"three", "four", "three"}));
  EXPECT_EQ(decoded("NSMutableArray", {{"NS.objects", keys}}), Value::list({"three", "four"}));
  EXPECT_EQ(decoded("NSSet", {{"NS.objects", keys}}), Value::set({"three", "four"}));
  EXPECT_EQ(decoded("NSMutableSet", {{"NS.objects", keys}}), Value::set({"four", "three"}));
  EXPECT_EQ(decoded("NSDictionary", {{"NS.keys", keys}, {"NS.objects", values}}), map);
  EXPECT_EQ(decoded("NSMutableDictionary", {{"NS.objects", values}, {"NS.keys", keys}}), map);
  EXPECT_EQ(decoded("NSURL", {{"NS.base", uid(0)}, {"NS.relative", uid(4)}}), Value::url({.text = "four", .base = {}}));
  EXPECT_EQ(decoded("NSURL", {{"NS.base", uid(5)}, {"NS.relative", uid(4)}}),
            Value::url({.text = "four", .base = base}));
}

TEST(KeyedArchive, FieldsThatAKnownClassDoesNotHaveAreIgnored) {
  EXPECT_EQ(decoded("NSDate", {{"note", uid(3)}, {"NS.time", 2.0}, {"more", 1}}), Value(Date{.seconds = 2}));
}

TEST(KeyedArchive, PlainObjectsStandForThemselves) {
  const std::vector<Value> plain = {"text",
                                    "$null",
                                    "é日😀",
                                    7,
                                    -1,
                                    1.5,
                                    true,
                                    Value::data("d"),
                                    Date{.seconds = 3},
                                    Real{.value = 0.5, .narrow = true}};

  for (const Value& value : plain) EXPECT_EQ(decodeArchive(archiveBytes({value})), value);
}

TEST(KeyedArchive, ObjectOfAnyOtherClassKeepsItsFieldsInOrder) {
  const Value value = decoded("AdRecord", {{"b", 1}, {"a", uid(3)}, {"nothing", uid(0)}, {"$0", true}});

  ASSERT_NE(value.ifObject(), nullptr);
  EXPECT_EQ(value.ifObject()->className, "AdRecord");
  std::string order;
  for (const auto& [name, field] : value.ifObject()->fields) order.append(*name.ifText()).append(" ");
  EXPECT_EQ(order, "b a nothing $0 ");
  EXPECT_EQ(value, Value::object({.className = "AdRecord",
                                  .fields = {{"b", 1}, {"a", "three"}, {"nothing", uid(0)}, {"$0", true}}}));
}

TEST(KeyedArchive, ContainersInAFieldHoldReferencesAndPlainValues) {
  const Value inner = Value::list({uid(4), 2});
  const Value value = decoded("AdRecord", {{"list", Value::list({uid(3), 1, inner})},
                                           {"map", Value::map({{"k", inner}, {uid(3), uid(0)}})},
                                           {"set", Value::set({uid(3), "x"})},
                                           {"date", Date{.seconds = 1}}});

  const ValueMap& fields = value.ifObject()->fields;
  const Value list = Value::list({"four", 2});
  EXPECT_EQ(*fields.find("list"), Value::list({"three", 1, list}));
  EXPECT_EQ(*fields.find("map"), Value::map({{"k", list}, {"three", uid(0)}}));
  EXPECT_EQ(*fields.find("set"), Value::set({"three", "x"}));
  EXPECT_EQ(*fields.find("date"), Value(Date{.seconds = 1}));
  EXPECT_EQ(fields.find("map")->ifMap()->find("k")->identity(), (*fields.find("list")->ifList())[2].identity());
}

TEST(KeyedArchive, ClassCountsByItsOwnNameNotByItsSuperclasses) {
  const Value object = Value::map({{"$class", uid(2)}, {"NS.objects", Value::list({uid(3)})}});
  const Value itsClass =
      Value::map({{"$classname", "AdList"}, {"$classes", Value::list({"AdList", "NSArray", "NSObject"})}});

  EXPECT_EQ(decodeArchive(archiveBytes({object, itsClass, "x"})),
            Value::object({.className = "AdList", .fields = {{"NS.objects", Value::list({"x"})}}}));
}

TEST(KeyedArchive, LastValueOfARepeatedKeyCountsAtTheFirstOnesPlace) {
  const Value value = decoded("NSDictionary", {{"NS.keys", Value::list({uid(3), uid(4), uid(3)})},
                                               {"NS.objects", Value::list({uid(0), uid(4), uid(5)})}});

  const auto& entries = *value.ifMap();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries.begin()->first, Value("three"));
  EXPECT_EQ(entries.begin()->second, Value::url({.text = "three", .base = {}}));
}

TEST(KeyedArchive, KeysAreOfAnyKind) {
  const Value keys = Value::list({uid(0), uid(3), uid(5), uid(6), uid(7)});
  const Value map = Value::map({{"$class", uid(2)}, {"NS.keys", keys}, {"NS.objects", keys}});
  const Value list = Value::map({{"$class", uid(4)}, {"NS.objects", Value::list({uid(3), uid(5)})}});

  const auto value =
      decodeArchive(archiveBytes({map, classObject("NSDictionary"), "t", classObject("NSArray"), 1, true, list}));

  const Value key = Value::list({"t", 1});
  EXPECT_EQ(value, Value::map({{uid(0), uid(0)}, {"t", "t"}, {1, 1}, {true, true}, {key, key}}));
}

TEST(KeyedArchive, RootIsUnderItsNameOrTheOnlyEntry) {
  const ValueList objects = {"$null", "one", "two"};
  const auto decodedTop = [&](const Value& top) { return decodeArchive(propertyListBytes(archiveOf(top, objects))); };

  EXPECT_EQ(decodedTop(Value::map({{"root", uid(2)}})), Value("two"));
  EXPECT_EQ(decodedTop(Value::map({{"other", uid(1)}, {"root", uid(2)}})), Value("two"));
  EXPECT_EQ(decodedTop(Value::map({{"other", uid(1)}})), Value("one"));
  EXPECT_EQ(decodedTop(Value::map({{"root", uid(0)}})), std::nullopt);
  EXPECT_EQ(decodedTop(Value::map({{"other", uid(0)}})), std::nullopt);
}

TEST(KeyedArchive, AnyArchiversNameWillDo) {
  const Value top = Value::map({{"root", uid(1)}});
  const Value objects = Value::list({"$null", "one"});

  for (const Value& archiver : {Value("Another"), Value(1)}) {
    EXPECT_EQ(decodeArchive(propertyListBytes(
                  Value::map({{"$archiver", archiver}, {"$version", 100000}, {"$top", top}, {"$objects", objects}}))),
              Value("one"));
  }
  EXPECT_EQ(decodeArchive(propertyListBytes(Value::map({{"$version", 100000}, {"$top", top}, {"$objects", objects}}))),
            Value("one"));
}

// The archive {"$version": 100000, "$top": {"root": 1}, "$objects": ["$null", "x"]} in every width.
TEST(KeyedArchive, UidsReferencesAndOffsetsHaveAnyWidth) {
  for (const std::size_t width : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U}) {
    const auto references = [&](std::initializer_list<unsigned> numbers) {
      std::string bytes;
      for (const unsigned number : numbers) bytes += test::bigEndianBytes(number, width);
      return bytes;
    };
    test::RawPropertyList list =
        test::rawList({"\xD3" + references({1, 2, 3, 4, 5, 6}), test::asciiObject("$version"),
                       test::asciiObject("$top"), test::asciiObject("$objects"), test::fromHex("12000186a0"),
                       "\xD1" + references({7, 8}), "\xA2" + references({9, 10}), test::asciiObject("root"),
                       static_cast<char>(0x80U + width - 1) + test::bigEndianBytes(1, width),
                       test::asciiObject("$null"), test::asciiObject("x")});
    list.referenceSize = width;
    list.offsetSize = width;

    EXPECT_EQ(decodeArchive(list.bytes()), Value("x")) << width;
  }
}

}  // namespace
}  // namespace tavlo::keyed_archive
