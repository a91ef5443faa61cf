// Property lists that are no keyed archive, and archives that no archiver writes: each ends in an error that says
// where.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "tests/cache/ArchiveBytes.h"
#include "tests/support/CaseName.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveBytes;
using test::archiveError;
using test::archiveOf;
using test::classObject;
using test::propertyListBytes;
using test::uid;

struct Bad {
  const char* name;
  std::string bytes;
  const char* error;
};

void PrintTo(const Bad& bad, std::ostream* out) { *out << bad.name; }

Bad badTop(const char* name, const Value& top, const char* error) {
  return {name, propertyListBytes(archiveOf(top, {"$null", "x"})), error};
}

// With this in place of one of the four entries.
Bad badEntry(const char* name, const char* entry, std::optional<Value> value, const char* error) {
  std::vector<ValueMap::Entry> entries;
  const Value archive = archiveOf(Value::map({{"root", uid(1)}}), {"$null", "x"});
  for (const auto& [key, sound] : *archive.ifMap()) {
    if (*key.ifText() != entry) entries.emplace_back(key, sound);
    if (*key.ifText() == entry && value) entries.emplace_back(key, *value);
  }
  return {name, propertyListBytes(Value::map(ValueMap(entries))), error};
}

// As object 1; the classes NSArray, NSDictionary and Ad are objects 2 to 4, and object 5 is a text.
Bad badObject(const char* name, const Value& object, const char* error) {
  return {name, archiveBytes({object, classObject("NSArray"), classObject("NSDictionary"), classObject("Ad"), "x"}),
          error};
}

Bad badFields(const char* name, const char* className, std::vector<ValueMap::Entry> fields, const char* error) {
  fields.emplace_back("$class", uid(2));
  return {name, archiveBytes({Value::map(ValueMap(fields)), classObject(className), "x"}), error};
}

class KeyedArchiveHostile : public testing::TestWithParam<Bad> {};

TEST_P(KeyedArchiveHostile, EndsInAnErrorThatSaysWhere) {
  const Bad& bad = GetParam();

  EXPECT_EQ(archiveError(bad.bytes), bad.error);
}

INSTANTIATE_TEST_SUITE_P(
    File, KeyedArchiveHostile,
    testing::Values(Bad{"NoBytes", "", "no property list: it does not begin with \"bplist\""},
                    Bad{"Xml", "<?xml version=\"1.0\"?><plist/>", "an XML property list; only the binary form is read"},
                    Bad{"Text", "Hello, world", "no property list: it does not begin with \"bplist\""},
                    Bad{"List", propertyListBytes(Value::list({})), "no keyed archive: the property list is no map"},
                    Bad{"EmptyMap", propertyListBytes(Value::map({})), "\"$version\" is missing"}),
    test::kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Entry, KeyedArchiveHostile,
    testing::Values(
        badEntry("NoVersion", "$version", {}, "\"$version\" is missing"),
        badEntry("OtherVersion", "$version", 100001, "\"$version\" is not 100000, the only one that is read"),
        badEntry("RealVersion", "$version", 100000.0, "\"$version\" is not 100000, the only one that is read"),
        badEntry("NoTop", "$top", {}, "\"$top\" is missing"),
        badEntry("TopIsAList", "$top", Value::list({uid(1)}), "\"$top\" is no map"),
        badEntry("NoObjects", "$objects", {}, "\"$objects\" is missing"),
        badEntry("ObjectsAreNoList", "$objects", Value::map({}), "\"$objects\" is no list"),
        badEntry("NoObjectAtAll", "$objects", Value::list({}), "\"$objects\" does not begin with \"$null\""),
        badEntry("Object0IsAnother", "$objects", Value::list({"x", "$null"}),
                 "\"$objects\" does not begin with \"$null\"")),
    test::kCaseName);

INSTANTIATE_TEST_SUITE_P(Top, KeyedArchiveHostile,
                         testing::Values(badTop("Empty", Value::map({}), "\"$top\" has 0 entries and none is \"root\""),
                                         badTop("TwoOthers", Value::map({{"a", uid(1)}, {"b", uid(1)}}),
                                                "\"$top\" has 2 entries and none is \"root\""),
                                         badTop("PlainRoot", Value::map({{"root", "x"}}),
                                                "\"$top\" holds a plain value where a reference to the root belongs"),
                                         badTop("RootOutOfRange", Value::map({{"root", uid(2)}}),
                                                "\"$top\" refers to object 2 of 2"),
                                         badTop("RootFarOutOfRange", Value::map({{"root", uid(~std::uint64_t{0})}}),
                                                "\"$top\" refers to object 18446744073709551615 of 2")),
                         test::kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Object, KeyedArchiveHostile,
    testing::Values(
        badObject("PropertyListNull", Value(),
                  "object 1: a property-list null; an archive's null is an object of NSNull"),
        badObject("Reference", uid(2), "object 1: a reference where an object belongs"),
        badObject("BareList", Value::list({uid(5)}),
                  "object 1: a bare property-list container; an archive's is an object with a class"),
        badObject("BareSet", Value::set({uid(5)}),
                  "object 1: a bare property-list container; an archive's is an object with a class"),
        badObject("NoClass", Value::map({{"NS.objects", Value::list({})}}), "object 1: \"$class\" is missing"),
        badObject("PlainClass", Value::map({{"$class", "NSArray"}}),
                  "object 1: \"$class\" holds a plain value where a reference belongs"),
        badObject("ClassOutOfRange", Value::map({{"$class", uid(6)}}), "object 1: it refers to object 6 of 6"),
        badObject("ClassIsNothing", Value::map({{"$class", uid(0)}}),
                  "object 0: no class, but the \"$class\" of object 1"),
        badObject("ClassIsAText", Value::map({{"$class", uid(5)}}),
                  "object 5: no class, but the \"$class\" of object 1"),
        badObject("ClassIsAnObject", Value::map({{"$class", uid(1)}}), "object 1: \"$classname\" is missing"),
        badObject("ClassIsTheRoot", classObject("NSArray"), "object 1: \"$class\" is missing"),
        badObject("FieldNameIsANumber", Value::map({{"$class", uid(4)}, {1, 1}}),
                  "object 1: a field's name is no text"),
        badObject("FieldIsNull", Value::map({{"$class", uid(4)}, {"a", Value()}}),
                  "object 1: it holds a property-list null; an archive's null is an object of NSNull"),
        badObject("FieldOutOfRange", Value::map({{"$class", uid(4)}, {"a", uid(9)}}),
                  "object 1: it refers to object 9 of 6"),
        badObject("ListInAFieldOutOfRange", Value::map({{"$class", uid(4)}, {"a", Value::list({uid(9)})}}),
                  "object 1: it refers to object 9 of 6"),
        badObject("NullInAListInAField", Value::map({{"$class", uid(4)}, {"a", Value::list({Value()})}}),
                  "object 1: it holds a property-list null; an archive's null is an object of NSNull"),
        badObject("ItemOutOfRange", Value::map({{"$class", uid(2)}, {"NS.objects", Value::list({uid(6)})}}),
                  "object 1 (NSArray): it refers to object 6 of 6"),
        badObject("ItemIsPlain", Value::map({{"$class", uid(2)}, {"NS.objects", Value::list({"x"})}}),
                  "object 1 (NSArray): \"NS.objects\" holds a plain value where a reference belongs"),
        badObject("ItemIsAClass", Value::map({{"$class", uid(2)}, {"NS.objects", Value::list({uid(2)})}}),
                  "object 2: \"$class\" is missing"),
        badObject(
            "KeyIsPlain",
            Value::map({{"$class", uid(3)}, {"NS.keys", Value::list({"k"})}, {"NS.objects", Value::list({uid(5)})}}),
            "object 1 (NSDictionary): \"NS.keys\" holds a plain value where a reference belongs"),
        badObject("MoreKeysThanValues",
                  Value::map({{"$class", uid(3)},
                              {"NS.keys", Value::list({uid(5), uid(5)})},
                              {"NS.objects", Value::list({uid(5)})}}),
                  "object 1 (NSDictionary): 2 keys for 1 values"),
        badObject("NoKeys", Value::map({{"$class", uid(3)}, {"NS.objects", Value::list({uid(5)})}}),
                  "object 1 (NSDictionary): \"NS.keys\" is missing")),
    test::kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Field, KeyedArchiveHostile,
    testing::Values(
        badFields("ListWithoutItems", "NSArray", {}, "object 1 (NSArray): \"NS.objects\" is missing"),
        badFields("ItemsAreNoList", "NSSet", {{"NS.objects", uid(3)}}, "object 1 (NSSet): \"NS.objects\" is no list"),
        badFields("TextIsMissing", "NSString", {}, "object 1 (NSString): \"NS.string\" is missing"),
        badFields("TextIsAReferenceToAClass", "NSMutableString", {{"NS.string", uid(2)}},
                  "object 1 (NSMutableString): \"NS.string\" is no text"),
        badFields("DataIsMissing", "NSData", {}, "object 1 (NSData): \"NS.data\" is missing"),
        badFields("DataIsText", "NSMutableData", {{"NS.data", "x"}},
                  "object 1 (NSMutableData): \"NS.data\" is no data"),
        badFields("TimeIsMissing", "NSDate", {}, "object 1 (NSDate): \"NS.time\" is missing"),
        badFields("TimeIsAText", "NSDate", {{"NS.time", "1"}}, "object 1 (NSDate): \"NS.time\" is no number"),
        badFields("UrlWithoutBase", "NSURL", {{"NS.relative", uid(3)}}, "object 1 (NSURL): \"NS.base\" is missing"),
        badFields("UrlWithoutText", "NSURL", {{"NS.base", uid(0)}}, "object 1 (NSURL): \"NS.relative\" is missing"),
        badFields("UrlBaseIsAText", "NSURL", {{"NS.base", uid(3)}, {"NS.relative", uid(3)}},
                  "object 1 (NSURL): \"NS.base\" is no URL"),
        badFields("UrlTextIsNothing", "NSURL", {{"NS.base", uid(0)}, {"NS.relative", uid(0)}},
                  "object 1 (NSURL): \"NS.relative\" is no text"),
        badFields("UrlTextIsPlain", "NSURL", {{"NS.base", uid(0)}, {"NS.relative", "x"}},
                  "object 1 (NSURL): \"NS.relative\" holds a plain value where a reference belongs"),
        badFields("ClassWithoutALetter", "", {}, "object 2: \"$classname\" is empty")),
    test::kCaseName);

TEST(KeyedArchiveHostileClass, NameMustBeAText) {
  const Value object = Value::map({{"$class", uid(2)}});

  EXPECT_EQ(archiveError(archiveBytes({object, Value::map({{"$classes", Value::list({"NSArray"})}})})),
            "object 2: \"$classname\" is missing");
  EXPECT_EQ(archiveError(archiveBytes({object, Value::map({{"$classname", uid(3)}}), "NSArray"})),
            "object 2: \"$classname\" is no text");
}

}  // namespace
}  // namespace tavlo::keyed_archive
