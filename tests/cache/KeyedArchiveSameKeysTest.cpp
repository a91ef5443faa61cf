// Maps and objects of one archive whose keys are alike, and that lie between others.
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

// Of fields in this order.
std::vector<std::string> names(const Value& object) {
  std::vector<std::string> names;
  for (const auto& [name, value] : object.ifObject()->fields) names.emplace_back(*name.ifText());
  return names;
}

// Objects 1 to 5: the root, the two classes and the keys "a" and "b"; then come the maps, which the root lists.
std::string mapsWith(RawArchive& raw, const RawArchive::Numbers& maps, RawArchive::Number c) {
  std::vector<std::uint64_t> indices;
  for (std::size_t i = 0; i < maps.size(); ++i) indices.push_back(7 + i);
  RawArchive::Numbers objects = {raw.array(2, raw.uids(indices)),
                                 raw.classObject("NSArray"),
                                 raw.classObject("NSDictionary"),
                                 raw.ascii("a"),
                                 raw.ascii("b"),
                                 c};
  objects.insert(objects.end(), maps.begin(), maps.end());
  return raw.bytes(objects);
}

TEST(KeyedArchiveSameKeys, MapsWithOtherKeysMayAlternate) {
  RawArchive raw;
  const auto a = raw.uid(4);
  const auto b = raw.uid(5);
  const auto c = raw.uid(6);
  RawArchive::Numbers maps;
  for (int i = 0; i < 2; ++i) {
    maps.push_back(raw.dictionary(3, raw.list({a, b}), raw.list({b, c})));
    maps.push_back(raw.dictionary(3, raw.list({c}), raw.list({a})));
    maps.push_back(raw.dictionary(3, raw.list({b, a}), raw.list({b, c})));
    maps.push_back(raw.dictionary(3, raw.list({}), raw.list({})));
    maps.push_back(raw.dictionary(3, raw.list({a}), raw.list({c})));
  }

  const Value list = decoded(mapsWith(raw, maps, raw.ascii("c")));

  const ValueList once = {Value::map({{"a", "b"}, {"b", "c"}}), Value::map({{"c", "a"}}),
                          Value::map({{"b", "b"}, {"a", "c"}}), Value::map({}), Value::map({{"a", "c"}})};
  ValueList twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(list, Value::list(twice));
  EXPECT_EQ(*list.ifList()->at(7).ifMap()->begin(), ValueMap::Entry("b", "b"));
}

TEST(KeyedArchiveSameKeys, ListsOfKeysMayBeOneOrEqualOrEqualInWhatTheyReferTo) {
  RawArchive raw;
  const auto a = raw.uid(4);
  const auto b = raw.uid(5);
  const auto keys = raw.list({a, b});
  const RawArchive::Numbers maps = {
      raw.dictionary(3, keys, raw.list({a, a})), raw.dictionary(3, keys, raw.list({a, b})),
      raw.dictionary(3, raw.list({a, b}), raw.list({b, a})), raw.dictionary(3, raw.uids({4, 5}), raw.list({b, b}))};

  const Value list = decoded(mapsWith(raw, maps, raw.ascii("c")));

  EXPECT_EQ(list, Value::list({Value::map({{"a", "a"}, {"b", "a"}}), Value::map({{"a", "a"}, {"b", "b"}}),
                               Value::map({{"a", "b"}, {"b", "a"}}), Value::map({{"a", "b"}, {"b", "b"}})}));
}

TEST(KeyedArchiveSameKeys, MapsWithTheSameKeysMayLieInsideOneAnotherAndOthersBetween) {
  RawArchive raw;
  const auto a = raw.uid(4);
  const auto b = raw.uid(5);
  const auto inner = raw.dictionary(3, raw.list({a, b}), raw.list({b, a}));
  const auto between = raw.dictionary(3, raw.list({b}), raw.uids({8}));
  const auto outer = raw.dictionary(3, raw.list({a, b}), raw.uids({9, 8}));
  const auto outermost = raw.dictionary(3, raw.list({a, b}), raw.uids({10, 9}));

  const Value list = decoded(mapsWith(raw, {outermost, inner, between, outer}, raw.ascii("c")));

  const Value in = Value::map({{"a", "b"}, {"b", "a"}});
  const Value middle = Value::map({{"b", in}});
  const Value out = Value::map({{"a", middle}, {"b", in}});
  EXPECT_EQ(list, Value::list({Value::map({{"a", out}, {"b", middle}}), in, middle, out}));
}

TEST(KeyedArchiveSameKeys, OfAKeyThatIsGivenTwiceTheLastValueCountsInEachMap) {
  RawArchive raw;
  const auto a = raw.uid(4);
  const auto b = raw.uid(5);
  const auto keys = [&] { return raw.list({a, b, a}); };
  const RawArchive::Numbers maps = {raw.dictionary(3, keys(), raw.uids({4, 5, 6})),
                                    raw.dictionary(3, keys(), raw.uids({6, 5, 4})),
                                    raw.dictionary(3, keys(), raw.uids({5, 5, 5}))};

  const Value list = decoded(mapsWith(raw, maps, raw.ascii("c")));

  EXPECT_EQ(list, Value::list({Value::map({{"a", "c"}, {"b", "b"}}), Value::map({{"a", "a"}, {"b", "b"}}),
                               Value::map({{"a", "b"}, {"b", "b"}})}));
  EXPECT_EQ(list.ifList()->at(1).ifMap()->size(), 2U);
  EXPECT_EQ(list.ifList()->at(1).ifMap()->begin()->first, Value("a"));
}

TEST(KeyedArchiveSameKeys, KeysMayBeOfOtherKindsThanText) {
  RawArchive raw;
  const auto a = raw.uid(4);
  const auto c = raw.uid(6);
  const auto nothing = raw.uid(0);
  const auto keys = [&] { return raw.list({c, a, nothing}); };
  const RawArchive::Numbers maps = {raw.dictionary(3, keys(), raw.list({a, a, c})),
                                    raw.dictionary(3, keys(), raw.list({c, c, a}))};

  const Value list = decoded(mapsWith(raw, maps, raw.integer(7)));

  const Value none = Uid{.index = 0};
  EXPECT_EQ(list,
            Value::list({Value::map({{7, "a"}, {"a", "a"}, {none, 7}}), Value::map({{7, 7}, {"a", 7}, {none, "a"}})}));
}

TEST(KeyedArchiveSameKeys, ValuesMustBeAsManyInEachMap) {
  RawArchive raw;
  const auto a = raw.uid(4);
  const auto b = raw.uid(5);
  const RawArchive::Numbers maps = {raw.dictionary(3, raw.list({a, b}), raw.list({a, b})),
                                    raw.dictionary(3, raw.list({a, b}), raw.list({a}))};

  const std::string bytes = mapsWith(raw, maps, raw.ascii("c"));

  EXPECT_EQ(archiveError(bytes), "object 8 (NSDictionary): 2 keys for 1 values");
}

TEST(KeyedArchiveSameKeys, ObjectsWithOtherNamesMayAlternateAndLieInsideOneAnother) {
  RawArchive raw;
  const auto itsClass = RawArchive::Entry(raw.ascii("$class"), raw.uid(2));
  const auto x = raw.ascii("x");
  const auto y = raw.ascii("$$y");
  const auto one = raw.integer(1);
  const auto two = raw.integer(2);
  const auto inner = raw.map({{y, one}, itsClass, {x, two}});
  const auto between = raw.map({itsClass, {x, raw.uid(3)}});
  const auto outer = raw.map({{y, raw.uid(4)}, itsClass, {x, raw.uid(3)}});
  const auto root = raw.map({{x, raw.uid(5)}, {y, raw.uid(4)}, itsClass});

  const Value object = decoded(raw.bytes({root, raw.classObject("Ad"), inner, between, outer}));

  const auto ad = [](ValueMap fields) { return Value::object({.className = "Ad", .fields = std::move(fields)}); };
  const Value in = ad({{"$y", 1}, {"x", 2}});
  const Value middle = ad({{"x", in}});
  const Value out = ad({{"$y", middle}, {"x", in}});
  EXPECT_EQ(object, ad({{"x", out}, {"$y", middle}}));
  EXPECT_EQ(names(object), (std::vector<std::string>{"x", "$y"}));
  EXPECT_EQ(names(*object.ifObject()->fields.find("x")), (std::vector<std::string>{"$y", "x"}));
}

// Of the same names, of which the class of one is another's.
TEST(KeyedArchiveSameKeys, ObjectsWithTheSameNamesHaveClassesAndValuesOfTheirOwn) {
  RawArchive raw;
  const auto itsClass = raw.ascii("$class");
  const auto x = raw.ascii("x");
  const auto root = raw.map({{itsClass, raw.uid(2)}, {x, raw.uid(3)}});
  const auto second = raw.map({{itsClass, raw.uid(4)}, {x, raw.integer(5)}});

  const Value object = decoded(raw.bytes({root, raw.classObject("Ad"), second, raw.classObject("Banner")}));

  EXPECT_EQ(object, Value::object({.className = "Ad",
                                   .fields = {{"x", Value::object({.className = "Banner", .fields = {{"x", 5}}})}}}));
}

}  // namespace
}  // namespace tavlo::keyed_archive
