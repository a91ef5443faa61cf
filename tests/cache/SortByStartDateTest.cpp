// The order of cached records.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "cache/SortByStartDate.h"

namespace tavlo {
namespace {

Value record(Value startDate, Value id) {
  return Value::map({{"id", std::move(id)}, {"startdate", std::move(startDate)}});
}

// The ids of these records, or the text that stands in place of one.
std::string ids(const ValueList& records) {
  std::string out;
  for (const Value& each : records) {
    const ValueMap* const fields = each.ifObject() ? &each.ifObject()->fields : each.ifMap();
    out += fields ? *fields->find("id")->ifText() : each.ifText().value_or("?");
  }
  return out;
}

std::string idsSorted(const ValueList& records) { return ids(sortedByStartDate(records)); }

TEST(SortByStartDate, EarliestComesFirst) {
  EXPECT_EQ(
      idsSorted({record(Date{.seconds = 3}, "c"), record(Date{.seconds = -1.5}, "a"), record(Date{.seconds = 0}, "b")}),
      "abc");
}

TEST(SortByStartDate, NumbersOrderByNumberWhateverTheirKind) {
  EXPECT_EQ(idsSorted({record(10, "d"), record(2.5, "c"), record(2, "b"), record(-3.0, "a")}), "abcd");
}

TEST(SortByStartDate, TextsOrderCharacterByCharacter) {
  EXPECT_EQ(idsSorted({record("é", "e"), record("2024-02", "c"), record("Z", "d"), record("2024-01-31", "b"),
                       record("10", "a"), record("😀", "g"), record("\xEF\xBF\xBD", "f")}),
            "abcdefg");
}

TEST(SortByStartDate, EqualDatesKeepTheirOrder) {
  const Value date = Date{.seconds = 1};

  EXPECT_EQ(idsSorted({record(date, "b"), record(date, "a"), record(Date{.seconds = 0}, "c"), record(date, "d")}),
            "cbad");
}

TEST(SortByStartDate, RecordsWithoutADateComeFirstInTheirOrder) {
  EXPECT_EQ(idsSorted({record(Date{.seconds = -1e300}, "e"), Value::map({{"id", "b"}}), record(Uid{.index = 0}, "a"),
                       "c", Value::object({.className = "Ad", .fields = {{"id", "d"}}})}),
            "bacde");
}

TEST(SortByStartDate, ObjectsOfNamedClassesHaveADateToo) {
  const Value object = Value::object({.className = "Ad", .fields = {{"id", "a"}, {"startdate", 1}}});

  EXPECT_EQ(idsSorted({record(2, "b"), object}), "ab");
}

TEST(SortByStartDate, KindsOrderAsTheHeaderSays) {
  const ValueList inOrder = {
      record(Uid{.index = 0}, "a"),
      record(Value(), "b"),
      record(false, "c"),
      record(true, "d"),
      record(-1, "e"),
      record(0.5, "f"),
      record(Date{.seconds = -5}, "g"),
      record("", "h"),
      record(Value::data(""), "i"),
      record(Value::url({.text = "u", .base = {}}), "j"),
      record(Uid{.index = 3}, "k"),
      record(Value::list({}), "l"),
      record(Value::set({}), "m"),
      record(Value::map({}), "n"),
      record(Value::object({.className = "Ad", .fields = {}}), "o"),
  };

  EXPECT_EQ(idsSorted(inOrder), "abcdefghijklmno");
  EXPECT_EQ(idsSorted(ValueList(inOrder.rbegin(), inOrder.rend())), "abcdefghijklmno");
}

TEST(SortByStartDate, NoneAndOneRecordComeBackUnchanged) {
  EXPECT_EQ(sortedByStartDate({}), ValueList{});
  EXPECT_EQ(sortedByStartDate({"one"}), ValueList{"one"});
}

TEST(SortByStartDate, InputStaysAsItWasAndRecordsAreShared) {
  const ValueList records = {record(2, "b"), record(1, "a")};

  const ValueList sorted = sortedByStartDate(records);

  EXPECT_EQ(ids(records), "ba");
  EXPECT_EQ(sorted[0].identity(), records[1].identity());
  EXPECT_EQ(sorted[1].identity(), records[0].identity());
}

TEST(SortByStartDate, TenThousandRecordsKeepTheOrderOfEqualOnes) {
  ValueList records;
  for (int i = 0; i < 10'000; ++i) records.push_back(record(Date{.seconds = static_cast<double>(i * 7919 % 100)}, i));

  const ValueList sorted = sortedByStartDate(records);

  ASSERT_EQ(sorted.size(), 10'000U);
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    const ValueMap& before = *sorted[i - 1].ifMap();
    const ValueMap& after = *sorted[i].ifMap();
    const auto order = *before.find("startdate") <=> *after.find("startdate");
    ASSERT_TRUE(order < 0 || (order == 0 && *before.find("id") < *after.find("id"))) << i;
  }
}

// Two large lists that differ at their ends stand in every date, each date being a list of its own.
TEST(SortByStartDate, DatesThatShareAreComparedOnce) {
  const auto large = [](int last) {
    ValueList items(200'000, 0);
    items.emplace_back(last);
    return Value::list(items);
  };
  const Value parts[] = {large(1), large(0)};
  ValueList records;
  for (int i = 0; i < 20'000; ++i) records.push_back(record(Value::list({parts[i % 2], i}), i));

  const ValueList sorted = sortedByStartDate(records);

  EXPECT_EQ(*sorted.front().ifMap()->find("id"), Value(1));
  EXPECT_EQ(*sorted.back().ifMap()->find("id"), Value(19'998));
}

// One large set or map stands in every second date, and meets a small one in most comparisons: sorted anew each
// time, its 100,000 items would be sorted 200,000 times.
TEST(SortByStartDate, ContentsOfSetsAndMapsThatDatesShareAreSortedOnce) {
  const auto asSet = [](const ValueList& items) { return Value::set(items); };
  const auto asMap = [](const ValueList& items) {
    ValueMap map;
    for (const Value& item : items) map.append(item, 0);
    return Value::map(std::move(map));
  };
  const auto asObject = [&](const ValueList& items) {
    return Value::object({.className = "Date", .fields = *asMap(items).ifMap()});
  };
  const std::function<Value(const ValueList&)> kinds[] = {asSet, asMap, asObject};
  ValueList many;
  for (int i = 100'000; i > 0; --i) many.emplace_back(i);

  for (const auto& made : kinds) {
    const Value large = made(many);
    ValueList records;
    for (int i = 0; i < 20'000; ++i) {
      const Value part = i % 2 == 0 ? large : made({-i});
      records.push_back(record(Value::list({part, i}), i));
    }

    const ValueList sorted = sortedByStartDate(records);

    EXPECT_EQ(*sorted[0].ifMap()->find("id"), Value(19'999));
    EXPECT_EQ(*sorted[9'999].ifMap()->find("id"), Value(1));
    EXPECT_EQ(*sorted[10'000].ifMap()->find("id"), Value(0));
    EXPECT_EQ(*sorted[19'999].ifMap()->find("id"), Value(19'998));
  }
}

}  // namespace
}  // namespace tavlo
