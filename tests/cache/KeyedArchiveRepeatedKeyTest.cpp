// A key that a map has twice, once as ASCII and once as UTF-16: the last value counts, at the first one's place, and
// the others are as if they were not there.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "tests/cache/ArchiveBytes.h"
#include "tests/cache/RawArchive.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveError;
using test::decodeArchive;
using test::RawArchive;

Value decoded(const std::string& bytes) { return decodeArchive(bytes).value(); }

// An archive of the texts "first" and "last" as objects 1 and 2, with these entries before and behind its own.
std::string around(const std::vector<RawArchive::Entry>& before, const std::vector<RawArchive::Entry>& behind,
                   RawArchive& raw) {
  std::vector<RawArchive::Entry> entries = before;
  entries.emplace_back(raw.ascii("$version"), raw.integer(100'000));
  entries.emplace_back(raw.ascii("$top"), raw.map({{raw.ascii("root"), raw.uid(1)}}));
  entries.emplace_back(raw.utf16("$objects"), raw.list({raw.utf16("$null"), raw.ascii("first"), raw.ascii("last")}));
  entries.insert(entries.end(), behind.begin(), behind.end());
  return raw.bytesOf(entries);
}

TEST(KeyedArchiveRepeatedKey, LastTopCounts) {
  RawArchive early;
  RawArchive late;
  const auto otherTop = [](RawArchive& raw) { return raw.map({{raw.utf16("root"), raw.uid(2)}}); };
  const RawArchive::Entry before = {early.utf16("$top"), otherTop(early)};
  const RawArchive::Entry behind = {late.utf16("$top"), otherTop(late)};

  EXPECT_EQ(decoded(around({before}, {}, early)), Value("first"));
  EXPECT_EQ(decoded(around({}, {behind}, late)), Value("last"));
}

TEST(KeyedArchiveRepeatedKey, LastRootCounts) {
  RawArchive raw;
  const auto top =
      raw.map({{raw.ascii("root"), raw.uid(1)}, {raw.utf16("root"), raw.uid(2)}, {raw.ascii("other"), raw.uid(1)}});
  const RawArchive::Entry behind = {raw.ascii("$top"), top};

  EXPECT_EQ(decoded(around({}, {behind}, raw)), Value("last"));
}

TEST(KeyedArchiveRepeatedKey, OneNameGivenTwiceIsTheOnlyOne) {
  RawArchive raw;
  const auto top = raw.map({{raw.ascii("any"), raw.uid(1)}, {raw.utf16("any"), raw.uid(2)}});
  const RawArchive::Entry behind = {raw.ascii("$top"), top};

  EXPECT_EQ(decoded(around({}, {behind}, raw)), Value("last"));
}

TEST(KeyedArchiveRepeatedKey, LastVersionCounts) {
  RawArchive early;
  RawArchive late;
  const RawArchive::Entry before = {early.utf16("$version"), early.null()};
  const RawArchive::Entry behind = {late.utf16("$version"), late.integer(5)};

  EXPECT_EQ(archiveError(around({before}, {}, early)), "");
  EXPECT_EQ(archiveError(around({}, {behind}, late)), "\"$version\" is not 100000, the only one that is read");
}

TEST(KeyedArchiveRepeatedKey, LastListOfObjectsCounts) {
  RawArchive early;
  RawArchive late;
  const RawArchive::Entry before = {early.ascii("$objects"), early.null()};
  const RawArchive::Entry behind = {late.ascii("$objects"), late.list({late.ascii("$null"), late.ascii("other")})};

  EXPECT_EQ(decoded(around({before}, {}, early)), Value("first"));
  EXPECT_EQ(decoded(around({}, {behind}, late)), Value("other"));
}

TEST(KeyedArchiveRepeatedKey, LastFieldOfAKnownClassCounts) {
  RawArchive raw;
  const auto root = raw.map({{raw.utf16("$class"), raw.uid(3)},
                             {raw.ascii("NS.objects"), raw.null()},
                             {raw.utf16("NS.objects"), raw.uids({4})},
                             {raw.ascii("$class"), raw.uid(2)}});
  const auto itsClass =
      raw.map({{raw.ascii("$classname"), raw.ascii("NSSet")}, {raw.utf16("$classname"), raw.utf16("NSArray")}});

  EXPECT_EQ(decoded(raw.bytes({root, itsClass, raw.classObject("NSSet"), raw.ascii("item")})), Value::list({"item"}));
}

TEST(KeyedArchiveRepeatedKey, KeysOfAMapAreOneWhenTheirTextsAreEqual) {
  RawArchive raw;
  const auto root = raw.dictionary(2, raw.uids({3, 4, 5}), raw.uids({6, 4, 7}));

  const Value map = decoded(raw.bytes({root, raw.classObject("NSDictionary"), raw.ascii("k"), raw.ascii("other"),
                                       raw.utf16("k"), raw.ascii("first"), raw.ascii("last")}));

  EXPECT_EQ(map, Value::map({{"k", "last"}, {"other", "other"}}));
  ASSERT_EQ(map.ifMap()->size(), 2U);
  EXPECT_EQ(*map.ifMap()->begin(), ValueMap::Entry("k", "last"));
}

// An object of class 2 with these fields, and its value.
struct Fields {
  RawArchive raw;
  std::vector<RawArchive::Entry> fields;

  std::string bytes() { return raw.bytes({raw.object(2, fields), raw.classObject("Ad")}); }
  ValueMap decodedFields() { return decoded(bytes()).ifObject()->fields; }
};

TEST(KeyedArchiveRepeatedKey, LastFieldCountsAtTheFirstOnesPlace) {
  Fields object;
  RawArchive& raw = object.raw;
  object.fields = {
      {raw.ascii("a"), raw.integer(1)}, {raw.ascii("b"), raw.integer(2)}, {raw.utf16("a"), raw.integer(3)}};

  const ValueMap fields = object.decodedFields();

  ASSERT_EQ(fields.size(), 2U);
  EXPECT_EQ(*fields.begin(), ValueMap::Entry("a", 3));
  EXPECT_EQ(*fields.find("b"), Value(2));
}

TEST(KeyedArchiveRepeatedKey, ValuesThatDoNotCountMayBeAnything) {
  Fields object;
  RawArchive& raw = object.raw;
  object.fields = {{raw.ascii("a"), raw.null()}, {raw.utf16("a"), raw.uid(99)}, {raw.ascii("a"), raw.integer(3)}};

  const ValueMap fields = object.decodedFields();

  ASSERT_EQ(fields.size(), 1U);
  EXPECT_EQ(*fields.begin(), ValueMap::Entry("a", 3));
}

TEST(KeyedArchiveRepeatedKey, LastValueMustBeSound) {
  Fields object;
  RawArchive& raw = object.raw;
  object.fields = {{raw.ascii("a"), raw.integer(3)}, {raw.utf16("a"), raw.uid(99)}};

  EXPECT_EQ(archiveError(object.bytes()), "object 1: it refers to object 99 of 3");
}

TEST(KeyedArchiveRepeatedKey, NameWithADollarGivenTwiceIsOneName) {
  Fields object;
  RawArchive& raw = object.raw;
  object.fields = {{raw.ascii("$$x"), raw.integer(1)}, {raw.utf16("$$x"), raw.integer(2)}};

  const ValueMap fields = object.decodedFields();

  ASSERT_EQ(fields.size(), 1U);
  EXPECT_EQ(*fields.begin(), ValueMap::Entry("$x", 2));
}

TEST(KeyedArchiveRepeatedKey, ClassGivenTwiceIsNoField) {
  Fields object;
  RawArchive& raw = object.raw;
  object.fields = {{raw.utf16("$class"), raw.null()}, {raw.ascii("a"), raw.integer(1)}};

  const ValueMap fields = object.decodedFields();

  ASSERT_EQ(fields.size(), 1U);
  EXPECT_EQ(*fields.begin(), ValueMap::Entry("a", 1));
}

TEST(KeyedArchiveRepeatedKey, MapInAFieldHasEachKeyOnce) {
  Fields object;
  RawArchive& raw = object.raw;
  const auto map =
      raw.map({{raw.utf16("k"), raw.null()}, {raw.ascii("l"), raw.integer(2)}, {raw.ascii("k"), raw.integer(3)}});
  object.fields = {{raw.ascii("map"), map}};

  const ValueMap fields = object.decodedFields();

  EXPECT_EQ(*fields.find("map"), Value::map({{"k", 3}, {"l", 2}}));
  EXPECT_EQ(*fields.find("map")->ifMap()->begin(), ValueMap::Entry("k", 3));
}

// An archive whose objects are `count` times the one that has the name "a" a thousand times, and a class.
std::string repeatedNames(std::size_t count) {
  RawArchive raw;
  std::vector<std::uint64_t> indices;
  for (std::size_t i = 0; i < count; ++i) indices.push_back(4 + i);
  RawArchive::Numbers objects = {raw.array(2, raw.uids(indices)), raw.classObject("NSArray"), raw.classObject("Ad")};
  const RawArchive::Entry field = {raw.ascii("a"), raw.integer(1)};
  objects.resize(objects.size() + count, raw.object(3, std::vector<RawArchive::Entry>(1000, field)));
  return raw.bytes(objects);
}

// Whoever looks for a name looks at each of them.
TEST(KeyedArchiveRepeatedKey, RepeatedNamesCountOneByOneWhereObjectsAreShared) {
  const Value object = Value::object({.className = "Ad", .fields = {{"a", 1}}});

  EXPECT_EQ(decoded(repeatedNames(60)), Value::list(ValueList(60, object)));
  EXPECT_EQ(archiveError(repeatedNames(80)), "object 72: too much is shared in other ways than by references");
}

}  // namespace
}  // namespace tavlo::keyed_archive
