// Lists of dates alone and of short texts alone are sorted by keys made of them: in no other order than comparing
// gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "cache/SortByStartDate.h"
#include "tests/support/Seed.h"

namespace tavlo {
namespace {

using namespace std::string_literals;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
constexpr double kLargest = std::numeric_limits<double>::max();

Value date(double seconds) { return Date{.seconds = seconds}; }

Value record(Value startDate, std::size_t id) {
  return Value::map({{"id", static_cast<std::int64_t>(id)}, {"startdate", std::move(startDate)}});
}

// With their places for ids.
ValueList records(const ValueList& startDates) {
  ValueList records;
  for (const Value& startDate : startDates) records.push_back(record(startDate, records.size()));
  return records;
}

// In the order in which their records come out.
ValueList sorted(const ValueList& startDates) {
  ValueList out;
  for (const Value& each : sortedByStartDate(records(startDates))) out.push_back(*each.ifMap()->find("startdate"));
  return out;
}

std::vector<std::string> idsSorted(const ValueList& startDates) {
  std::vector<std::string> ids;
  for (const Value& each : sortedByStartDate(records(startDates))) {
    ids.push_back(each.ifMap()->find("id")->ifInteger()->decimal());
  }
  return ids;
}

using Ids = std::vector<std::string>;

// From whichever order they come.
void expectOrder(const ValueList& inOrder) {
  const ValueList reversed(inOrder.rbegin(), inOrder.rend());
  ValueList turned = inOrder;
  std::rotate(turned.begin(), turned.begin() + static_cast<std::ptrdiff_t>(inOrder.size() / 2), turned.end());

  EXPECT_EQ(sorted(inOrder), inOrder);
  EXPECT_EQ(sorted(reversed), inOrder);
  EXPECT_EQ(sorted(turned), inOrder);
}

TEST(SortByStartDateKeys, DatesOrderByNumberAndTheZeroBelowZeroFirst) {
  expectOrder({date(-kInfinity), date(-kLargest), date(-2), date(-1), date(-kSmallest), date(-0.0), date(0.0),
               date(kSmallest), date(1), date(2), date(kLargest), date(kInfinity)});
}

TEST(SortByStartDateKeys, DatesThatAreNoNumberComeFirst) {
  const double quiet = std::numeric_limits<double>::quiet_NaN();
  const double negative = std::bit_cast<double>(std::uint64_t{0xFFF8} << 48U);
  const double more = std::bit_cast<double>((std::uint64_t{0x7FF8} << 48U) + 1);

  expectOrder({date(negative), date(quiet), date(more), date(-kInfinity), date(-0.0), date(0.0), date(kInfinity)});
}

TEST(SortByStartDateKeys, EqualDatesKeepTheirOrder) {
  EXPECT_EQ(idsSorted({date(1), date(0.0), date(1), date(-0.0), date(0.0), date(1), date(-0.0)}),
            (Ids{"3", "6", "1", "4", "0", "2", "5"}));
}

TEST(SortByStartDateKeys, EqualTextsKeepTheirOrder) {
  EXPECT_EQ(idsSorted({"2024-01-02", "2024-01-01", "2024-01-02", "", "2024-01-01", ""}),
            (Ids{"3", "5", "1", "4", "0", "2"}));
}

TEST(SortByStartDateKeys, TextsOrderBeyondTheirFirstEightBytes) {
  expectOrder({"12345678", "123456780", "123456781", "12345678a", "1234567a", "1234567a0"});
}

TEST(SortByStartDateKeys, TextsThatBeginAlikeOrderByWhatFollows) {
  expectOrder({"2026-05", "2026-05-01", "2026-05-01 10:00:00", "2026-05-01 10:00:01", "2026-05-11", "2026-06-01"});
  expectOrder({"2026-05-01 10:00", "2026-05-01 10:00:00.000", "2026-05-01 10:00:00.0001", "2026-05-01 10:00:01"});
}

TEST(SortByStartDateKeys, EachBitOfADateCounts) {
  for (int bit = 0; bit < 64; ++bit) {
    const double one = std::bit_cast<double>(std::bit_cast<std::uint64_t>(1.0) ^ std::uint64_t{1} << bit);
    expectOrder({date(std::min(one, 1.0)), date(std::max(one, 1.0))});
  }
}

TEST(SortByStartDateKeys, ShorterOfTwoTextsComesFirst) {
  expectOrder({"", "a", "aa", "aaa", "aaaaaaa", "aaaaaaaa", "aaaaaaaaa", "aaaaaaaaaa", "ab", "b"});
}

TEST(SortByStartDateKeys, TextWithoutANulComesBeforeTheOneWithIt) {
  expectOrder({"", "\0"s, "\0\0"s, "\0\0\0\0\0\0\0\0"s, "\0\0\0\0\0\0\0\0\0"s, "\0a"s, "a", "a\0"s, "a\0\0"s, "a\0b"s,
               "aaaaaaa", "aaaaaaa\0"s, "aaaaaaa\0a"s, "aaaaaaaa"});
}

TEST(SortByStartDateKeys, BytesOfTextsCountFrom0To255) {
  expectOrder({"\x01", "\x7F", "\x80", "\xC3\xA9", "\xED\xA0\x80", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80", "\xFF"});
  expectOrder({"12345678\x7F", "12345678\x80", "12345678\xFF"});
}

TEST(SortByStartDateKeys, LongAndShortTextsHaveOneOrder) {
  const std::string x63(63, 'x');

  expectOrder({x63 + "a", x63 + "b", x63 + "c"});
  expectOrder({x63, x63 + "a", x63 + "aa", x63 + "ab", x63 + "b"});
  expectOrder({std::string(65, 'w'), x63, std::string(64, 'x'), std::string(65, 'x'), "y"});
}

TEST(SortByStartDateKeys, MixedKindsOrderByKind) {
  expectOrder({false, -7, date(-1), date(2), "", "2024", Value::data("1")});
  expectOrder({1, date(-kInfinity), date(-0.0), date(0.0)});
  expectOrder({date(kInfinity), "", "12345678", "123456789"});
}

TEST(SortByStartDateKeys, RecordWithoutADateComesBeforeDatesAndTexts) {
  const Value none = Value::map({{"id", 9}});

  for (const Value& startDate : {date(-kInfinity), Value("")}) {
    EXPECT_EQ(sortedByStartDate({record(startDate, 0), none}), (ValueList{none, record(startDate, 0)}));
    EXPECT_EQ(sortedByStartDate({none, record(startDate, 0)}), (ValueList{none, record(startDate, 0)}));
  }
}

// Lists of random dates and texts, many of them equal or alike at their beginnings.
class RandomLists {
 public:
  ValueList next() {
    const std::uint64_t kinds = 1 + below(7);  // dates, texts, long texts and others: any but none
    ValueList startDates;
    for (std::uint64_t count = below(40); count > 0; --count) {
      std::uint64_t kind = below(3);
      while ((kinds >> kind & 1U) == 0) kind = below(3);
      startDates.push_back(kind == 0 ? someDate() : kind == 1 ? text(below(12)) : other());
    }
    return startDates;
  }

 private:
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(generator_() % limit); }

  Value someDate() {
    constexpr double kSeconds[] = {-kInfinity, -1, -kSmallest, -0.0, 0.0, kSmallest, 1, 2, kInfinity};
    return below(2) == 0 ? date(kSeconds[below(9)]) : date(std::bit_cast<double>(generator_()));
  }

  Value text(std::size_t length) {
    constexpr char kBytes[] = {'\0', 'a', 'b', '\x7F', '\x80', '\xFF'};
    std::string text(below(2) == 0 ? length : 0, 'a');
    while (text.size() < length) text.push_back(kBytes[below(6)]);
    if (below(2) == 0 && !text.empty()) text.back() = kBytes[below(6)];
    return text;
  }

  Value other() {
    switch (below(4)) {
      case 0: return text(60 + below(8));
      case 1: return static_cast<std::int64_t>(below(3));
      case 2: return static_cast<double>(below(3));
      default: return Value::list({text(2)});
    }
  }

  std::mt19937_64 generator_{test::seed()};
};

TEST(SortByStartDateKeys, OrderIsThatOfValues) {
  RandomLists lists;
  for (int round = 0; round < 1000; ++round) {
    const ValueList given = records(lists.next());
    ValueList expected = given;
    std::stable_sort(expected.begin(), expected.end(), [](const Value& a, const Value& b) {
      return (*a.ifMap()->find("startdate") <=> *b.ifMap()->find("startdate")) < 0;
    });

    ASSERT_EQ(sortedByStartDate(given), expected) << "round " << round;
  }
}

}  // namespace
}  // namespace tavlo
