// Small archives made to cost much: in depth, in circles, by sharing.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "common/ValueNumbers.h"
#include "tests/cache/ArchiveBytes.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveBytes;
using test::archiveError;
using test::classObject;
using test::decodeArchive;
using test::uid;

// Lists that hold what `itemsOf(number)` says, as objects 1 to `count`; their class and a text come behind.
template <class ItemsOf>
std::string lists(std::uint64_t count, ItemsOf itemsOf, const char* className = "NSArray") {
  ValueList objects;
  for (std::uint64_t number = 1; number <= count; ++number) {
    ValueMap fields;
    fields.append("NS.objects", Value::list(itemsOf(number)));
    fields.append("$class", uid(count + 1));
    objects.push_back(Value::map(std::move(fields)));
  }
  objects.push_back(classObject(className));
  objects.emplace_back("end");
  return archiveBytes(objects);
}

std::string chain(std::uint64_t length) {
  return lists(length,
               [&](std::uint64_t number) { return ValueList{uid(number == length ? length + 2 : number + 1)}; });
}

std::string circle(std::uint64_t length) {
  return lists(length, [&](std::uint64_t number) { return ValueList{uid(number == length ? 1 : number + 1)}; });
}

TEST(KeyedArchiveCost, CirclesAreRefused) {
  EXPECT_EQ(archiveError(circle(1)), "object 1 (NSArray): it contains itself");
  EXPECT_EQ(archiveError(circle(2)), "object 1 (NSArray): it contains itself");
  EXPECT_EQ(archiveError(circle(512)), "object 1 (NSArray): it contains itself");
  EXPECT_EQ(archiveError(circle(100'000)), "object 513 (NSArray): nested too deep");
}

TEST(KeyedArchiveCost, CirclesThroughEveryKindOfPartAreRefused) {
  const auto error = [](std::vector<ValueMap::Entry> fields, const char* className) {
    fields.emplace_back("$class", uid(2));
    return archiveError(archiveBytes({Value::map(ValueMap(fields)), classObject(className), "x"}));
  };
  const Value itself = Value::list({uid(1)});
  const Value other = Value::list({uid(3)});

  EXPECT_EQ(error({{"NS.objects", itself}}, "NSSet"), "object 1 (NSSet): it contains itself");
  EXPECT_EQ(error({{"NS.keys", itself}, {"NS.objects", other}}, "NSDictionary"),
            "object 1 (NSDictionary): it contains itself");
  EXPECT_EQ(error({{"NS.keys", other}, {"NS.objects", itself}}, "NSDictionary"),
            "object 1 (NSDictionary): it contains itself");
  EXPECT_EQ(error({{"NS.base", uid(1)}, {"NS.relative", uid(3)}}, "NSURL"), "object 1 (NSURL): it contains itself");
  EXPECT_EQ(error({{"field", uid(1)}}, "Ad"), "object 1: it contains itself");
  EXPECT_EQ(error({{"field", Value::list({Value::map({{"k", uid(1)}})})}}, "Ad"), "object 1: it contains itself");
}

TEST(KeyedArchiveCost, NestingEndsAtItsBound) {
  EXPECT_EQ(archiveError(chain(512)), "");
  EXPECT_EQ(archiveError(chain(513)), "object 513 (NSArray): nested too deep");
  EXPECT_EQ(archiveError(chain(100'000)), "object 513 (NSArray): nested too deep");
}

// The root holds the bottom of a chain first, and then ever higher links, so that no walk is ever deep.
TEST(KeyedArchiveCost, HeightsCountWhereDepthsDoNot) {
  const auto climbed = [](std::uint64_t height) {
    return lists(height, [&](std::uint64_t number) {
      if (number > 1) return ValueList{uid(number == height ? height + 2 : number + 1)};
      ValueList links;
      for (std::uint64_t link = height; link > 1; --link) links.push_back(uid(link));
      return links;
    });
  };

  EXPECT_EQ(archiveError(climbed(512)), "");
  EXPECT_EQ(archiveError(climbed(513)), "object 1 (NSArray): nested too deep");
}

TEST(KeyedArchiveCost, SharingDoesNotMultiply) {
  constexpr std::uint64_t kLevels = 400;
  for (const char* className : {"NSArray", "NSSet"}) {
    const std::string file = lists(
        kLevels, [](std::uint64_t n) { return ValueList(2, uid(n == kLevels ? kLevels + 2 : n + 1)); }, className);

    const auto one = decodeArchive(file);
    const auto other = decodeArchive(file);

    ValueNumbers numbers;
    EXPECT_EQ(one, other);
    EXPECT_EQ(numbers.of(*one), numbers.of(*other));
    EXPECT_EQ(decode(encode(one)), one);
  }
}

TEST(KeyedArchiveCost, SharingInAFieldDoesNotMultiply) {
  Value doubled = Value::list({uid(3)});
  for (int level = 0; level < 200; ++level) doubled = Value::list({doubled, doubled});

  const auto value =
      decodeArchive(archiveBytes({Value::map({{"$class", uid(2)}, {"field", doubled}}), classObject("Ad"), "x"}));

  const ValueList& items = *value->ifObject()->fields.find("field")->ifList();
  EXPECT_EQ(items[0].identity(), items[1].identity());
}

// Each of `count` objects is one map of the property list, so that the archive repeats what the file has once.
std::string repeated(std::size_t count, const Value& object, ValueList others) {
  ValueList items;
  ValueList objects = {Value()};
  for (std::size_t i = 0; i < count; ++i) {
    items.push_back(uid(objects.size() + 1));
    objects.push_back(object);
  }
  objects.insert(objects.end(), others.begin(), others.end());
  objects[0] = Value::map({{"$class", uid(objects.size() + 1)}, {"NS.objects", Value::list(items)}});
  objects.push_back(classObject("NSArray"));
  return archiveBytes(objects);
}

constexpr std::uint64_t kRepeats = 5000;

TEST(KeyedArchiveCost, OneListUnderManyObjectsIsRefused) {
  const Value object =
      Value::map({{"$class", uid(kRepeats + 2)}, {"NS.objects", Value::list(ValueList(5000, uid(0)))}});

  const std::string error = archiveError(repeated(kRepeats, object, {classObject("NSSet")}));

  EXPECT_EQ(error, "object 25 (NSSet): too much is shared in other ways than by references");
}

TEST(KeyedArchiveCost, OneMapOfFieldsUnderManyObjectsIsRefused) {
  std::vector<ValueMap::Entry> fields = {{"$class", uid(kRepeats + 2)}};
  for (int i = 0; i < 5000; ++i) fields.emplace_back("f" + std::to_string(i), 0);

  const std::string error = archiveError(repeated(kRepeats, Value::map(ValueMap(fields)), {classObject("Ad")}));

  EXPECT_EQ(error, "object 36: too much is shared in other ways than by references");
}

TEST(KeyedArchiveCost, LongClassNameOfManyObjectsIsRefused) {
  const Value object = Value::map({{"$class", uid(kRepeats + 2)}});
  const std::string name(100'000, 'A');

  const std::string error = archiveError(repeated(kRepeats, object, {classObject(name.c_str())}));

  EXPECT_EQ(error, "object 36: too many URLs and class names for the archive's size");
}

TEST(KeyedArchiveCost, LongTextOfManyUrlsIsRefused) {
  const Value url =
      Value::map({{"$class", uid(kRepeats + 2)}, {"NS.base", uid(0)}, {"NS.relative", uid(kRepeats + 3)}});

  const std::string error = archiveError(repeated(kRepeats, url, {classObject("NSURL"), std::string(100'000, 'u')}));

  EXPECT_EQ(error, "object 36 (NSURL): too many URLs and class names for the archive's size");
}

std::string encodeError(const Value& value) {
  try {
    static_cast<void>(encode(value));
  } catch (const ArchiveError& error) {
    return error.what();
  }
  return "";
}

TEST(KeyedArchiveCost, SizeEndsAtItsBoundBothWays) {
  const auto data = [](std::size_t size) { return Value::data(std::string(size, 'd')); };
  const std::size_t around = encode(data(4'000'000)).size() - 4'000'000;
  const std::size_t most = 4'194'304 - around;

  const std::string largest = encode(data(most));

  EXPECT_EQ(largest.size(), 4'194'304U);
  EXPECT_EQ(archiveError(largest), "");
  EXPECT_EQ(archiveError(largest + "x"), "4194305 bytes; an archive of more than 4194304 is not read");
  EXPECT_EQ(encodeError(data(most + 1)), "4194305 bytes; an archive of more than 4194304 is not written");
}

TEST(KeyedArchiveCost, LongNameOfAFieldOfManyObjectsIsLookedIntoOnce) {
  const Value name("$$" + std::string(1'000'000, 'n'));
  const Value object = Value::map({{"$class", uid(20'002)}, {name, 1}});

  const auto value = decodeArchive(repeated(20'000, object, {classObject("Ad")}));
  const auto again = decode(encode(value));

  const ValueList& objects = *again->ifList();
  EXPECT_EQ(objects.size(), 20'000U);
  EXPECT_EQ(objects.back().ifObject()->fields.begin()->first, Value("$" + std::string(1'000'000, 'n')));
}

TEST(KeyedArchiveCost, ClassWithManyFieldsIsLookedIntoOnce) {
  std::vector<ValueMap::Entry> fields;
  for (int i = 0; i < 20'000; ++i) fields.emplace_back("f" + std::to_string(i), 0);
  fields.emplace_back("$classname", "Ad");
  const Value object = Value::map({{"$class", uid(20'002)}});

  EXPECT_EQ(decodeArchive(repeated(20'000, object, {Value::map(ValueMap(fields))}))->ifList()->size(), 20'000U);
}

}  // namespace
}  // namespace tavlo::keyed_archive
