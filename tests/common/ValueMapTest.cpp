#include <gtest/gtest.h>

#include <vector>

#include "common/Value.h"
#include "common/ValueNumbers.h"

namespace tavlo {
namespace {

TEST(ValueMap, OfEqualKeysTheLastValueStandsAtTheFirstPlace) {
  const ValueMap map({{"a", 1}, {"b", 2}, {"a", 3}, {Value::list({1}), 4}, {"a", 5}, {Value::list({1}), 6}});

  ASSERT_EQ(map.size(), 3U);
  std::vector<ValueMap::Entry> entries(map.begin(), map.end());
  EXPECT_EQ(entries[0], ValueMap::Entry("a", 5));
  EXPECT_EQ(entries[1], ValueMap::Entry("b", 2));
  EXPECT_EQ(entries[2], ValueMap::Entry(Value::list({1}), 6));
}

TEST(ValueMap, KeysOfDifferentKindsAreDifferent) {
  const ValueMap map({{1, "integer"}, {true, "boolean"}, {1.0, "real"}, {"1", "text"}, {Value::data("1"), "data"}});

  EXPECT_EQ(map.size(), 5U);
}

TEST(ValueMap, SetReplacesInPlaceOrAppends) {
  ValueMap map({{"a", 1}, {"b", 2}});

  map.set("a", 3);
  map.set("c", 4);

  std::vector<ValueMap::Entry> entries(map.begin(), map.end());
  EXPECT_EQ(entries, (std::vector<ValueMap::Entry>{{"a", 3}, {"b", 2}, {"c", 4}}));
}

TEST(ValueMap, FindMeansTheTextKey) {
  const ValueMap map({{Value::data("a"), 1}, {1, 2}, {"a", 3}});

  ASSERT_NE(map.find("a"), nullptr);
  EXPECT_EQ(*map.find("a"), Value(3));
  EXPECT_EQ(map.find("1"), nullptr);
  EXPECT_EQ(ValueMap().find(""), nullptr);
  EXPECT_TRUE(ValueMap().empty());
}

TEST(ValueMap, MapsMadeWithOneNumberingAreTheSameAsWithout) {
  ValueNumbers numbers;
  const Value key = Value::list({"k"});
  const Value sameKey = Value::list({"k"});
  const std::vector<ValueMap::Entry> entries = {{key, 1}, {sameKey, 2}, {"x", 3}};

  const ValueMap first(entries, numbers);
  const ValueMap second(entries, numbers);

  EXPECT_EQ(first.size(), 2U);
  EXPECT_EQ(Value::map(first), Value::map(second));
  EXPECT_EQ(Value::map(first), Value::map(ValueMap(entries)));
}

}  // namespace
}  // namespace tavlo
