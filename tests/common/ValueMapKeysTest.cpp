// A map that is made of many entries at once is the map that setting them one after another makes.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "common/Value.h"
#include "common/ValueNumbers.h"
#include "tests/support/Seed.h"

namespace tavlo {
namespace {

using Entries = std::vector<ValueMap::Entry>;

Entries contents(const ValueMap& map) { return {map.begin(), map.end()}; }

Entries setOneByOne(const Entries& entries) {
  ValueMap map;
  for (const auto& [key, value] : entries) map.set(key, value);
  return contents(map);
}

// Each with its place for a value.
Entries entriesOf(const ValueList& keys) {
  Entries entries;
  for (const Value& key : keys) entries.emplace_back(key, static_cast<std::int64_t>(entries.size()));
  return entries;
}

// Texts whose hashes end in the same `bits`.
ValueList colliding(std::size_t count, unsigned bits) {
  const std::size_t mask = (std::size_t{1} << bits) - 1;
  ValueList keys;
  for (std::uint64_t number = 0; keys.size() < count; ++number) {
    const std::string text = std::to_string(number);
    if ((std::hash<std::string_view>()(text) & mask) == mask) keys.emplace_back(text);
  }
  return keys;
}

TEST(ValueMapKeys, OneToFortyDifferentTextsStandInTheirOrder) {
  ValueList keys;
  for (int count = 1; count <= 40; ++count) {
    keys.emplace_back("key " + std::to_string(count));

    const ValueMap map(entriesOf(keys));

    ASSERT_EQ(contents(map), entriesOf(keys)) << count;
    ASSERT_EQ(*map.find("key 1"), Value(0)) << count;
    ASSERT_EQ(*map.find("key " + std::to_string(count)), Value(count - 1)) << count;
  }
}

TEST(ValueMapKeys, LastOfOneToFortyTextsMayBeAnyOfThoseBefore) {
  ValueList keys;
  for (int count = 1; count <= 40; ++count) {
    keys.emplace_back("key " + std::to_string(count));
    for (int which = 0; which < count; ++which) {
      Entries entries = entriesOf(keys);
      Entries expected = entries;
      entries.emplace_back("key " + std::to_string(which + 1), "last");
      expected[static_cast<std::size_t>(which)].second = "last";

      ASSERT_EQ(contents(ValueMap(entries)), expected) << count << " keys, the last is " << which;
    }
  }
}

// As many as probing puts up with, and more.
TEST(ValueMapKeys, TextsThatCollideAreDifferent) {
  for (const std::size_t count : {2U, 3U, 8U, 9U, 10U, 40U}) {
    const ValueList keys = colliding(count, 8);

    EXPECT_EQ(contents(ValueMap(entriesOf(keys))), entriesOf(keys)) << count;
  }
}

TEST(ValueMapKeys, TextsThatCollideAndRepeatAreOneEach) {
  for (const std::size_t count : {2U, 3U, 8U, 9U, 10U, 40U}) {
    const ValueList keys = colliding(count, 8);
    Entries entries = entriesOf(keys);
    Entries expected = entries;
    entries.emplace_back(keys.back(), "last");
    expected.back().second = "last";

    EXPECT_EQ(contents(ValueMap(entries)), expected) << count;
  }
}

TEST(ValueMapKeys, LongTextsAreKeysLikeAnyOther) {
  for (const std::size_t length : {63U, 64U, 65U, 1000U}) {
    const std::string text(length, 'k');
    const ValueMap map({{text + "a", 1}, {text + "b", 2}, {text, 3}, {text + "a", 4}, {"k", 5}});

    EXPECT_EQ(contents(map), (Entries{{text + "a", 4}, {text + "b", 2}, {text, 3}, {"k", 5}})) << length;
  }
}

TEST(ValueMapKeys, LongTextsThatRepeatAreOneBehindShortOnes) {
  const std::string text(65, 'k');

  EXPECT_EQ(contents(ValueMap({{"a", 1}, {"b", 2}, {text, 3}, {"a", 4}, {text, 5}})),
            (Entries{{"a", 4}, {"b", 2}, {text, 5}}));
}

TEST(ValueMapKeys, KeysOfOtherKindsThatRepeatAreOneBehindTexts) {
  const Value list = Value::list({"a"});

  EXPECT_EQ(contents(ValueMap({{"a", 1}, {1, 2}, {Value::data("a"), 3}, {list, 4}, {"a", 5}, {1, 6}, {list, 7}})),
            (Entries{{"a", 5}, {1, 6}, {Value::data("a"), 3}, {list, 7}}));
}

TEST(ValueMapKeys, TextsMayBeEmptyAndHoldNul) {
  const std::string nul(1, '\0');

  EXPECT_EQ(contents(ValueMap({{"", 1}, {nul, 2}, {nul + nul, 3}, {"", 4}, {nul, 5}})),
            (Entries{{"", 4}, {nul, 5}, {nul + nul, 3}}));
}

TEST(ValueMapKeys, EntriesThatWereGivenStayAsTheyWere) {
  const Entries entries = {{"a", 1}, {"b", 2}, {"a", 3}};
  ValueNumbers numbers;

  const ValueMap map(entries, numbers);

  EXPECT_EQ(map.size(), 2U);
  EXPECT_EQ(entries, (Entries{{"a", 1}, {"b", 2}, {"a", 3}}));
}

TEST(ValueMapKeys, RandomEntriesMakeTheMapThatSettingThemMakes) {
  std::mt19937_64 generator(test::seed());
  const auto below = [&](std::uint64_t limit) { return generator() % limit; };
  ValueNumbers numbers;
  for (int round = 0; round < 1000; ++round) {
    const std::uint64_t letters = 2 + below(25);
    const bool areTexts = below(4) != 0;
    Entries entries;
    for (std::uint64_t count = below(41); count > 0; --count) {
      std::string text(below(20) == 0 ? 64 : 0, 'k');
      for (std::uint64_t length = below(4); length > 0; --length) {
        text.push_back(static_cast<char>('a' + below(letters)));
      }
      const Value key = areTexts || below(3) != 0 ? Value(text) : Value(static_cast<std::int64_t>(below(5)));
      entries.emplace_back(key, static_cast<std::int64_t>(count));
    }

    ASSERT_EQ(contents(ValueMap(entries)), setOneByOne(entries)) << "round " << round;
    ASSERT_EQ(contents(ValueMap(entries, numbers)), setOneByOne(entries)) << "round " << round;
  }
}

}  // namespace
}  // namespace tavlo
