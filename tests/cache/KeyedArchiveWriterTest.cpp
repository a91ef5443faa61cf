// What an archive looks like inside, and which values none can hold.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "cache/KeyedArchive.h"
#include "common/PropertyList.h"
#include "tests/cache/ArchiveBytes.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveFile;
using test::archiveOf;
using test::uid;

Value url(const char* text, std::optional<Value> base = {}) {
  return Value::url({.text = text, .base = std::move(base)});
}

Value object(const char* className, std::vector<ValueMap::Entry> fields) {
  return Value::object({.className = className, .fields = ValueMap(fields)});
}

std::string encodeError(const Value& value) {
  try {
    static_cast<void>(encode(value));
  } catch (const ArchiveError& error) {
    return error.what();
  }
  return "";
}

Value nested(int levels, const std::function<Value(const Value&)>& around) {
  Value value("end");
  for (int level = 0; level < levels; ++level) value = around(value);
  return value;
}

Value listAround(const Value& item) { return Value::list({item}); }

TEST(KeyedArchiveWriter, EveryKindIsLaidDownAsTheDeviceDoes) {
  const Value value = Value::list({"s", 1, true, 1.5, Value::data("d"), Date{.seconds = 2}, Value(), uid(0),
                                   url("r", url("b")), Value::set({"s"}), Value::map({{"k", "s"}}),
                                   object("Ad", {{"i", 1}, {"t", "s"}, {"b", false}, {"r", 0.5}, {"n", uid(0)}})});

  const auto written = property_list::decode(encode(value)).value;

  const auto itsClass = [](const char* name) {
    return Value::map({{"$classname", name}, {"$classes", Value::list({name, "NSObject"})}});
  };
  ValueList references;
  for (const unsigned number : {2U, 3U, 4U, 5U, 6U, 7U, 9U, 0U, 11U, 16U, 18U, 21U}) references.push_back(uid(number));
  const Value objects = Value::list(
      {"$null",
       Value::map({{"NS.objects", Value::list(references)}, {"$class", uid(23)}}),
       "s",
       1,
       true,
       1.5,
       Value::data("d"),
       Value::map({{"NS.time", 2.0}, {"$class", uid(8)}}),
       itsClass("NSDate"),
       Value::map({{"$class", uid(10)}}),
       itsClass("NSNull"),
       Value::map({{"NS.base", uid(12)}, {"NS.relative", uid(15)}, {"$class", uid(14)}}),
       Value::map({{"NS.base", uid(0)}, {"NS.relative", uid(13)}, {"$class", uid(14)}}),
       "b",
       itsClass("NSURL"),
       "r",
       Value::map({{"NS.objects", Value::list({uid(2)})}, {"$class", uid(17)}}),
       itsClass("NSSet"),
       Value::map({{"NS.keys", Value::list({uid(19)})}, {"NS.objects", Value::list({uid(2)})}, {"$class", uid(20)}}),
       "k",
       itsClass("NSDictionary"),
       Value::map({{"i", 1}, {"t", uid(2)}, {"b", false}, {"r", 0.5}, {"n", uid(0)}, {"$class", uid(22)}}),
       itsClass("Ad"),
       itsClass("NSArray")});
  EXPECT_EQ(written, archiveOf(Value::map({{"root", uid(1)}}), *objects.ifList()));
}

TEST(KeyedArchiveWriter, FieldsAndEntriesKeepTheirOrder) {
  const Value back = decode(encode(object("Ad", {{"b", 1}, {"a", "x"}, {"c", 2}}))).value();

  std::string order;
  for (const auto& [name, field] : back.ifObject()->fields) order += *name.ifText();
  EXPECT_EQ(order, "bac");
}

TEST(KeyedArchiveWriter, NothingAtAllIsARoot) {
  EXPECT_EQ(decode(encode(std::nullopt)), std::nullopt);
  EXPECT_EQ(encode(uid(0)), encode(std::nullopt));
  EXPECT_EQ(decode(encode(Value())), Value());
}

TEST(KeyedArchiveWriter, SharedObjectsAreWrittenOnceAndStayShared) {
  const Value value = decode(archiveFile("device_shared")).value();

  const Value back = decode(encode(value)).value();

  for (const Value& each : {value, back}) {
    const ValueList& list = *each.ifList();
    EXPECT_EQ(list[0].identity(), list[1].identity());
    EXPECT_EQ(list[0].identity(), (*list[2].ifList())[0].identity());
    EXPECT_EQ(list[0].ifMap()->find("s")->identity(), (*list[2].ifList())[1].identity());
  }
}

TEST(KeyedArchiveWriter, EqualContainersOfTheirOwnStayApart) {
  const Value back = decode(encode(Value::list({Value::list({"x"}), Value::list({"x"})}))).value();

  const ValueList& list = *back.ifList();
  EXPECT_NE(list[0].identity(), list[1].identity());
  EXPECT_EQ((*list[0].ifList())[0].identity(), (*list[1].ifList())[0].identity());
}

TEST(KeyedArchiveWriter, EqualValuesGiveEqualBytes) {
  for (const char* name : {"device_types", "device_custom_list", "desktop_five_records"}) {
    EXPECT_EQ(encode(decode(archiveFile(name))), encode(decode(archiveFile(name)))) << name;
  }
}

TEST(KeyedArchiveWriter, TextWithALoneSurrogateComesBack) {
  for (const char* text : {"\xED\xA0\x80", "a\xED\xBF\xBF", "\xED\xBF\xBF\xED\xA0\x80"}) {
    EXPECT_EQ(decode(encode(Value(text))), Value(text));
  }
}

TEST(KeyedArchiveWriter, ValuesThatNoArchiveHoldsAreRefused) {
  const char* const text = "object 1 of the archive to be: a text is not UTF-8";

  EXPECT_EQ(encodeError(uid(7)), "object 1 of the archive to be: a reference (7) is no value to archive");
  EXPECT_EQ(encodeError(Value::list({"x", uid(1)})),
            "object 3 of the archive to be: a reference (1) is no value to archive");
  EXPECT_EQ(encodeError("\xFF"), text);
  EXPECT_EQ(encodeError("\xED\xA0\x80\xED\xB0\x80"), text);
  EXPECT_EQ(encodeError(url("\xFF")), "object 2 of the archive to be: a text is not UTF-8");
  EXPECT_EQ(encodeError(url("x", "y")), "object 2 of the archive to be: a URL's base is no URL");
  EXPECT_EQ(encodeError(object("", {})), "object 2 of the archive to be: an object without a class name");
  EXPECT_EQ(encodeError(object("\xFF", {})), "object 2 of the archive to be: a class name is not UTF-8");
  EXPECT_EQ(encodeError(object("NSArray", {})),
            "object 2 of the archive to be: an object of class \"NSArray\", which is a value of its own kind");
  EXPECT_EQ(encodeError(object("Ad", {{1, 1}})), "object 2 of the archive to be: a field's name is no text");
  EXPECT_EQ(encodeError(object("Ad", {{"\xFF", 1}})), "object 2 of the archive to be: a field's name is not UTF-8");
}

TEST(KeyedArchiveWriter, NestingEndsWhereTheReadersDoes) {
  const std::function<Value(const Value&)> around[] = {
      listAround,
      [](const Value& item) { return Value::set({item}); },
      [](const Value& item) {
        return Value::map({{"k", item}});
      },
      [](const Value& item) {
        return Value::map({{item, "v"}});
      },
      [](const Value& item) {
        return object("Ad", {{"f", item}});
      },
      [](const Value& item) { return url("u", item.ifUrl() ? std::optional(item) : std::nullopt); },
  };

  for (const auto& wrap : around) {
    const Value deepest = nested(512, wrap);
    EXPECT_EQ(decode(encode(deepest)), deepest);
    EXPECT_TRUE(encodeError(nested(513, wrap)).ends_with(" of the archive to be: nested too deep"));
  }
  EXPECT_EQ(encodeError(nested(513, listAround)), "object 513 of the archive to be: nested too deep");
}

// Met near the top first, where its depth is no trouble.
TEST(KeyedArchiveWriter, HeightsCountWhereDepthsDoNot) {
  const Value high = nested(511, listAround);

  EXPECT_EQ(encodeError(Value::list({high, "x"})), "");
  EXPECT_NE(encodeError(Value::list({high, Value::list({high})})), "");
}

TEST(KeyedArchiveWriter, WhatTheReaderRefusesForItsCostIsNotWritten) {
  ValueList urls;
  ValueList objects;
  for (int i = 0; i < 60; ++i) {
    urls.push_back(url(std::string(100'000, 'u').c_str()));
    objects.push_back(object(std::string(100'000, 'A').c_str(), {}));
  }
  const char* const error = "the archive to be has too many URLs and class names for its size";

  EXPECT_EQ(encodeError(Value::list(urls)), error);
  EXPECT_EQ(encodeError(Value::list(objects)), error);
}

}  // namespace
}  // namespace tavlo::keyed_archive
