// What other archivers than ours write, and names of fields that begin with "$".
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "common/PropertyList.h"
#include "tests/cache/ArchiveBytes.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveBytes;
using test::archiveError;
using test::classObject;
using test::decodeArchive;
using test::uid;

// The fields of object 1, whose class is object 2; objects 3 to 6 are a text, data, a real and an integer.
std::string archive(const char* className, std::vector<ValueMap::Entry> fields) {
  fields.emplace_back("$class", uid(2));
  return archiveBytes({Value::map(ValueMap(fields)), classObject(className), "three", Value::data("four"), 5.5, 6});
}

Value decoded(const char* className, std::vector<ValueMap::Entry> fields) {
  return decodeArchive(archive(className, std::move(fields))).value();
}

std::string error(const char* className, std::vector<ValueMap::Entry> fields) {
  return archiveError(archive(className, std::move(fields)));
}

Value ad(std::vector<ValueMap::Entry> fields) { return Value::object({.className = "Ad", .fields = ValueMap(fields)}); }

// The names of the fields of object 1, as they stand in the archive that is written.
std::string writtenNames(const Value& object) {
  const Value list = property_list::decode(encode(object)).value.value();
  std::string names;
  for (const auto& [name, value] : *(*list.ifMap()->find("$objects")->ifList())[1].ifMap()) {
    names.append(*name.ifText()).append(" ");
  }
  return names;
}

TEST(KeyedArchiveOtherWriters, TimeOfADateMayBeAnInteger) {
  EXPECT_EQ(decoded("NSDate", {{"NS.time", 1}}), Value(Date{.seconds = 1}));
  EXPECT_EQ(decoded("NSDate", {{"NS.time", -3}}), Value(Date{.seconds = -3}));
  EXPECT_EQ(decoded("NSDate", {{"NS.time", Integer{.high = 1, .low = 0}}}),
            Value(Date{.seconds = 18446744073709551616.0}));
  EXPECT_EQ(decoded("NSDate", {{"NS.time", Integer{.high = -2, .low = 0}}}),
            Value(Date{.seconds = -36893488147419103232.0}));
}

TEST(KeyedArchiveOtherWriters, TextMayBeBytes) {
  EXPECT_EQ(decoded("NSString", {{"NS.bytes", Value::data("a\xC3\xA9")}}), Value("aé"));
  EXPECT_EQ(decoded("NSMutableString", {{"NS.bytes", Value::data("")}}), Value(""));
  EXPECT_EQ(decoded("NSString", {{"NS.bytes", Value::data("b")}, {"NS.string", "s"}}), Value("s"));
}

TEST(KeyedArchiveOtherWriters, BytesOfATextMustBeUtf8) {
  EXPECT_EQ(error("NSString", {{"NS.bytes", Value::data("a\xFF")}}), "object 1 (NSString): \"NS.bytes\" is not UTF-8");
  EXPECT_EQ(error("NSString", {{"NS.bytes", Value::data("\xED\xA0\x80")}}),
            "object 1 (NSString): \"NS.bytes\" is not UTF-8");
  EXPECT_EQ(error("NSMutableString", {{"NS.bytes", "a"}}), "object 1 (NSMutableString): \"NS.bytes\" is no data");
}

// As one megabyte each it would be 20 GB of text.
TEST(KeyedArchiveOtherWriters, BytesThatManyTextsHaveAreOneText) {
  ValueList references;
  ValueList objects = {Value()};
  const Value bytes = Value::data(std::string(1'000'000, 'b'));
  for (std::uint64_t number = 2; number <= 20'001; ++number) {
    references.push_back(uid(number));
    objects.push_back(Value::map({{"$class", uid(20'002)}, {"NS.bytes", bytes}}));
  }
  objects[0] = Value::map({{"$class", uid(20'003)}, {"NS.objects", Value::list(references)}});
  objects.push_back(classObject("NSString"));
  objects.push_back(classObject("NSArray"));

  const auto value = decodeArchive(archiveBytes(objects));

  EXPECT_EQ(value->ifList()->size(), 20'000U);
  EXPECT_EQ(value->ifList()->front().identity(), value->ifList()->back().identity());
}

TEST(KeyedArchiveOtherWriters, PlainValuesMayBeReferences) {
  EXPECT_EQ(decoded("NSString", {{"NS.string", uid(3)}}), Value("three"));
  EXPECT_EQ(decoded("NSString", {{"NS.bytes", uid(4)}}), Value("four"));
  EXPECT_EQ(decoded("NSData", {{"NS.data", uid(4)}}), Value::data("four"));
  EXPECT_EQ(decoded("NSDate", {{"NS.time", uid(5)}}), Value(Date{.seconds = 5.5}));
  EXPECT_EQ(decoded("NSDate", {{"NS.time", uid(6)}}), Value(Date{.seconds = 6}));
}

TEST(KeyedArchiveOtherWriters, ReferencesToAnythingElseAreRefused) {
  EXPECT_EQ(error("NSString", {{"NS.string", uid(0)}}), "object 1 (NSString): \"NS.string\" is no text");
  EXPECT_EQ(error("NSString", {{"NS.string", uid(1)}}), "object 1 (NSString): \"NS.string\" is no text");
  EXPECT_EQ(error("NSString", {{"NS.string", uid(7)}}), "object 1 (NSString): it refers to object 7 of 7");
  EXPECT_EQ(error("NSData", {{"NS.data", uid(3)}}), "object 1 (NSData): \"NS.data\" is no data");
  EXPECT_EQ(error("NSDate", {{"NS.time", uid(3)}}), "object 1 (NSDate): \"NS.time\" is no number");
}

TEST(KeyedArchiveOtherWriters, NamesLoseTheDollarThatTheArchiverPutInFront) {
  EXPECT_EQ(decoded("Ad", {{"$$class", 1}, {"$$", 2}, {"$$$x", 3}, {"$y", 4}, {"a$$", 5}}),
            ad({{"$class", 1}, {"$", 2}, {"$$x", 3}, {"$y", 4}, {"a$$", 5}}));
}

TEST(KeyedArchiveOtherWriters, NamesThatBeginWithADollarAreWrittenWithOneMore) {
  const Value object = ad({{"$class", 1}, {"$", 2}, {"$$x", 3}, {"$1x", 4}, {"a$", 5}});

  EXPECT_EQ(writtenNames(object), "$$class $$ $$$x $$1x a$ $class ");
  EXPECT_EQ(decode(encode(object)), object);
}

TEST(KeyedArchiveOtherWriters, NamesOfUnnamedFieldsStayAsTheyAre) {
  const Value object = ad({{"$0", 1}, {"$12", 2}, {"$$0", 3}});

  EXPECT_EQ(decoded("Ad", {{"$0", 1}, {"$12", 2}, {"$$0", 3}}), object);
  EXPECT_EQ(writtenNames(object), "$0 $12 $$0 $class ");
}

TEST(KeyedArchiveOtherWriters, NamesThatBecomeEqualAreRefused) {
  const char* const refused = "object 1: two fields have one name, but for a \"$\"";

  EXPECT_EQ(error("Ad", {{"$x", 1}, {"$$x", 2}}), refused);
  EXPECT_EQ(error("Ad", {{"$$x", 1}, {"$x", 2}}), refused);
  EXPECT_EQ(error("Ad", {{"$$x", 1}, {"$$$x", 2}}), "");
}

}  // namespace
}  // namespace tavlo::keyed_archive
