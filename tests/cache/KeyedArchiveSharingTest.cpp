// What an archive has once is one value, by whatever ways it is met; what it has twice is two.
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

// Short texts lie in each value that is one.
constexpr const char* kText = "a text of more than 22 bytes";

Value decoded(const std::string& bytes) { return decodeArchive(bytes).value(); }

const Value& item(const Value& list, std::size_t index) { return list.ifList()->at(index); }

const Value& under(const Value& value, std::string_view key) {
  return *(value.ifObject() ? value.ifObject()->fields : *value.ifMap()).find(key);
}

const Value& onlyKey(const Value& map) { return map.ifMap()->begin()->first; }

// A list of two maps, whose values are these; object 6 is a text, object 7 equal to it.
Value twoMaps(RawArchive& raw, RawArchive::Number firstValue, RawArchive::Number secondValue) {
  const auto root = raw.array(8, raw.uids({2, 3}));
  const auto first = raw.dictionary(9, raw.uids({4}), raw.list({firstValue}));
  const auto second = raw.dictionary(9, raw.uids({5}), raw.list({secondValue}));
  return decoded(raw.bytes({root, first, second, raw.ascii("a"), raw.ascii("b"), raw.ascii(kText), raw.ascii(kText),
                            raw.classObject("NSArray"), raw.classObject("NSDictionary")}));
}

TEST(KeyedArchiveSharing, TextOfTwoMapsIsOneThroughOneReference) {
  RawArchive raw;
  const auto reference = raw.uid(6);

  const Value root = twoMaps(raw, reference, reference);

  EXPECT_EQ(under(item(root, 0), "a"), Value(kText));
  EXPECT_EQ(under(item(root, 0), "a").identity(), under(item(root, 1), "b").identity());
}

TEST(KeyedArchiveSharing, TextOfTwoMapsIsOneThroughTwoReferences) {
  RawArchive raw;
  const auto reference = raw.uid(6);
  const auto another = raw.uid(6);

  const Value root = twoMaps(raw, reference, another);

  EXPECT_EQ(under(item(root, 0), "a").identity(), under(item(root, 1), "b").identity());
}

TEST(KeyedArchiveSharing, EqualTextsThatAreMetOnceAreTwo) {
  RawArchive raw;
  const auto reference = raw.uid(6);
  const auto another = raw.uid(7);

  const Value root = twoMaps(raw, reference, another);

  EXPECT_EQ(under(item(root, 0), "a"), under(item(root, 1), "b"));
  EXPECT_NE(under(item(root, 0), "a").identity(), under(item(root, 1), "b").identity());
}

TEST(KeyedArchiveSharing, ContainerOfTwoMapsIsOne) {
  RawArchive raw;
  const auto root = raw.array(6, raw.uids({2, 3}));
  const auto first = raw.dictionary(7, raw.uids({4}), raw.uids({5}));
  const auto second = raw.dictionary(7, raw.uids({4}), raw.uids({5}));
  const auto shared = raw.array(6, raw.uids({4}));

  const Value list = decoded(raw.bytes(
      {root, first, second, raw.ascii(kText), shared, raw.classObject("NSArray"), raw.classObject("NSDictionary")}));

  EXPECT_EQ(under(item(list, 0), kText), Value::list({kText}));
  EXPECT_EQ(under(item(list, 0), kText).identity(), under(item(list, 1), kText).identity());
  EXPECT_EQ(item(under(item(list, 0), kText), 0).identity(), onlyKey(item(list, 1)).identity());
}

TEST(KeyedArchiveSharing, KeyThatIsItsOwnValueIsOne) {
  RawArchive raw;
  const auto root = raw.dictionary(3, raw.uids({2}), raw.uids({2}));

  const Value map = decoded(raw.bytes({root, raw.ascii(kText), raw.classObject("NSDictionary")}));

  EXPECT_EQ(map, Value::map({{kText, kText}}));
  EXPECT_EQ(onlyKey(map).identity(), under(map, kText).identity());
}

// Equal lists of references to keys, of which one map's are taken for the other's.
TEST(KeyedArchiveSharing, KeyOfTwoMapsIsOne) {
  RawArchive raw;
  const auto key = raw.uid(4);
  const auto root = raw.array(6, raw.uids({2, 3, 4}));
  const auto first = raw.dictionary(7, raw.list({key}), raw.uids({5}));
  const auto second = raw.dictionary(7, raw.list({key}), raw.uids({5}));

  const Value list = decoded(raw.bytes({root, first, second, raw.ascii(kText), raw.ascii("v"),
                                        raw.classObject("NSArray"), raw.classObject("NSDictionary")}));

  EXPECT_EQ(onlyKey(item(list, 0)).identity(), onlyKey(item(list, 1)).identity());
  EXPECT_EQ(onlyKey(item(list, 0)).identity(), item(list, 2).identity());
}

// The text stands in a list in a field, and is an object of the archive besides.
TEST(KeyedArchiveSharing, TextThatStandsInPlaceAndIsReferredToIsOne) {
  RawArchive raw;
  const auto text = raw.ascii(kText);
  const auto root = raw.object(3, {{raw.ascii("list"), raw.list({text})}, {raw.ascii("uid"), raw.uid(2)}});

  const Value object = decoded(raw.bytes({root, text, raw.classObject("Ad")}));

  EXPECT_EQ(under(object, "uid"), Value(kText));
  EXPECT_EQ(item(under(object, "list"), 0).identity(), under(object, "uid").identity());
}

TEST(KeyedArchiveSharing, TextsAndContainersInTwoFieldsAreOneWhenTheFileHasThemOnce) {
  RawArchive raw;
  const auto text = raw.ascii(kText);
  const auto list = raw.list({raw.ascii("item")});
  const auto equalList = raw.list({raw.ascii("item")});
  const auto root = raw.object(2, {{raw.ascii("a"), text},
                                   {raw.ascii("b"), text},
                                   {raw.ascii("c"), list},
                                   {raw.ascii("d"), list},
                                   {raw.ascii("e"), equalList}});

  const Value object = decoded(raw.bytes({root, raw.classObject("Ad")}));

  EXPECT_EQ(under(object, "a").identity(), under(object, "b").identity());
  EXPECT_EQ(under(object, "c").identity(), under(object, "d").identity());
  EXPECT_EQ(under(object, "c"), under(object, "e"));
  EXPECT_NE(under(object, "c").identity(), under(object, "e").identity());
}

TEST(KeyedArchiveSharing, OneTextUnderTwoIndicesIsOne) {
  RawArchive raw;
  const auto text = raw.ascii(kText);
  const auto root = raw.array(4, raw.uids({2, 3}));

  const Value list = decoded(raw.bytes({root, text, text, raw.classObject("NSArray")}));

  EXPECT_EQ(item(list, 0), Value(kText));
  EXPECT_EQ(item(list, 0).identity(), item(list, 1).identity());
}

// The fields of a plain text, and of the object of a text.
TEST(KeyedArchiveSharing, TextThatAnObjectOfATextRefersToIsOne) {
  RawArchive raw;
  const auto root = raw.array(5, raw.uids({2, 3, 4}));
  const auto first = raw.object(6, {{raw.ascii("NS.string"), raw.uid(4)}});
  const auto second = raw.object(6, {{raw.ascii("NS.string"), raw.uid(4)}});

  const Value list = decoded(
      raw.bytes({root, first, second, raw.ascii(kText), raw.classObject("NSArray"), raw.classObject("NSString")}));

  EXPECT_EQ(list, Value::list({kText, kText, kText}));
  EXPECT_EQ(item(list, 0).identity(), item(list, 1).identity());
  EXPECT_EQ(item(list, 0).identity(), item(list, 2).identity());
}

TEST(KeyedArchiveSharing, OneListOfReferencesUnderTwoObjectsLeadsToTheSameObjects) {
  RawArchive raw;
  const auto references = raw.uids({4, 5});
  const auto root = raw.array(6, raw.uids({2, 3}));
  const auto first = raw.array(6, references);
  const auto second = raw.array(6, references);
  const auto empty = raw.array(6, raw.list({}));

  const Value list = decoded(raw.bytes({root, first, second, raw.ascii(kText), empty, raw.classObject("NSArray")}));

  EXPECT_EQ(item(list, 1), Value::list({kText, Value::list({})}));
  EXPECT_EQ(item(item(list, 0), 0).identity(), item(item(list, 1), 0).identity());
  EXPECT_EQ(item(item(list, 0), 1).identity(), item(item(list, 1), 1).identity());
}

// The only reference to object 2 stands in the list that it has itself.
TEST(KeyedArchiveSharing, CircleThroughAListOfAnotherObjectIsSeenAtOnce) {
  RawArchive raw;
  const auto references = raw.uids({2});
  const auto root = raw.array(3, references);
  const auto inner = raw.array(3, references);

  const std::string bytes = raw.bytes({root, inner, raw.classObject("NSArray")});

  EXPECT_EQ(archiveError(bytes), "object 2 (NSArray): it contains itself");
}

TEST(KeyedArchiveSharing, OneObjectUnderTwoIndicesIsTwoWithTheSameContents) {
  RawArchive raw;
  const auto root = raw.array(4, raw.uids({2, 3}));
  const auto object = raw.object(5, {{raw.ascii(kText), raw.ascii(kText)},
                                     {raw.ascii("list"), raw.list({raw.ascii("y")})},
                                     {raw.ascii("uid"), raw.uid(6)}});

  const Value list =
      decoded(raw.bytes({root, object, object, raw.classObject("NSArray"), raw.classObject("Ad"), raw.ascii(kText)}));

  const Value& first = item(list, 0);
  const Value& second = item(list, 1);
  EXPECT_NE(first.identity(), second.identity());
  EXPECT_EQ(under(first, kText).identity(), under(second, kText).identity());
  EXPECT_EQ(under(first, "list").identity(), under(second, "list").identity());
  EXPECT_EQ(under(first, "uid").identity(), under(second, "uid").identity());
  EXPECT_EQ(under(second, "uid"), Value(kText));
}

// More objects in the archive than in the file: 200 are one text.
TEST(KeyedArchiveSharing, IndicesBeyondTheFilesObjectsAreReadAsAnyOther) {
  RawArchive raw;
  const auto text = raw.ascii(kText);
  const auto root = raw.array(2, raw.uids({199, 200, 199}));
  RawArchive::Numbers objects = {root, raw.classObject("NSArray")};
  objects.resize(200, text);

  const Value list = decoded(raw.bytes(objects));

  EXPECT_EQ(list, Value::list({kText, kText, kText}));
  EXPECT_EQ(item(list, 0).identity(), item(list, 1).identity());
  EXPECT_EQ(item(list, 0).identity(), item(list, 2).identity());
}

}  // namespace
}  // namespace tavlo::keyed_archive
