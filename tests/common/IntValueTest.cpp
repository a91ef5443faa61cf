#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "common/IntValue.h"
#include "tests/support/CaseName.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo {
namespace {

constexpr std::int32_t kLargest = 2147483647;
constexpr std::int32_t kSmallest = -2147483647 - 1;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Case {
  const char* name;
  std::optional<Value> value;
  std::int32_t reading;
};

class IntValue : public testing::TestWithParam<Case> {};

TEST_P(IntValue, ReadsAsThePlatformDoes) { EXPECT_EQ(intValue(GetParam().value), GetParam().reading); }

INSTANTIATE_TEST_SUITE_P(
    Texts, IntValue,
    testing::Values(Case{"Plain", "42", 42}, Case{"Minus", "-2", -2}, Case{"Plus", "+7", 7}, Case{"Letters", "abc", 0},
                    Case{"Empty", "", 0}, Case{"LettersAfter", "12abc", 12}, Case{"PointAfter", "3.9", 3},
                    Case{"TwoSigns", "+-5", 0}, Case{"TwoMinuses", "--5", 0}, Case{"SignAlone", "-", 0},
                    Case{"BlankAfterSign", "- 5", 0}, Case{"LeadingBlanks", " \t\n\r\v\f5", 5},
                    Case{"UnicodeBlanks",
                         "\xC2\xA0\xE1\x9A\x80\xE2\x80\x83\xE2\x80\xA8\xE3\x80\x80\xC2\x85"
                         "5",
                         5},
                    Case{"ZeroWidthSpaceIsNoBlank",
                         "\xE2\x80\x8B"
                         "5",
                         0},
                    Case{"ByteOrderMarkIsNoBlank",
                         "\xEF\xBB\xBF"
                         "5",
                         0},
                    Case{"IllFormedIsNoBlank",
                         "\xA0"
                         "5",
                         0},
                    Case{"OtherDigits", "\xD9\xA3", 0}, Case{"LeadingZeros", "0000000000000000000012", 12},
                    Case{"Largest", "2147483647", kLargest}, Case{"AboveLargest", "2147483648", kLargest},
                    Case{"OneBelowLargest", "2147483646", 2147483646},
                    Case{"OneAboveSmallest", "-2147483647", -2147483647}, Case{"Smallest", "-2147483648", kSmallest},
                    Case{"BelowSmallest", "-2147483649", kSmallest},
                    Case{"FarAbove", "99999999999999999999999999999999", kLargest},
                    Case{"FarBelow", "-99999999999999999999999999999999", kSmallest},
                    Case{"NulEnds", std::string("1\0002", 3), 1}),
    test::kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Numbers, IntValue,
    testing::Values(Case{"Integer", 42, 42}, Case{"Negative", -42, -42}, Case{"Largest", 2147483647, kLargest},
                    Case{"JustAboveWraps", 2147483648LL, kSmallest}, Case{"HighBitsDrop", 4294967297LL, 1},
                    Case{"JustBelowWraps", -2147483649LL, kLargest},
                    Case{"Unsigned64", std::numeric_limits<std::uint64_t>::max(), -1},
                    Case{"Bits128", Integer{.high = 5, .low = 7}, 7}, Case{"RealCut", 3.9, 3},
                    Case{"NegativeRealCut", -3.9, -3}, Case{"BelowOne", 0.99, 0}, Case{"RealWraps", 4294967297.5, 1},
                    Case{"RealBeyond64Bits", std::ldexp(1.0, 70) + std::ldexp(1.0, 20), 1 << 20},
                    Case{"HugeReal", 1e300, 0}, Case{"Infinite", kInfinity, 0}, Case{"NoNumber", std::nan(""), 0},
                    Case{"Narrow", Real{.value = 2.5, .narrow = true}, 2}, Case{"True", true, 1},
                    Case{"False", false, 0}),
    test::kCaseName);

INSTANTIATE_TEST_SUITE_P(Others, IntValue,
                         testing::Values(Case{"Absent", std::nullopt, 0}, Case{"Null", Value(), 0},
                                         Case{"Data", Value::data("5"), 0}, Case{"List", Value::list({5}), 0},
                                         Case{"ADate", Date{.seconds = 5}, 0}, Case{"AUid", Uid{.index = 5}, 0}),
                         test::kCaseName);

TEST(IntValueOfTexts, AgreesWithASecondImplementation) {
  const std::string count = "10000";

  const auto lines = test::splitLines(test::runOracle("int_value.py", {count, std::to_string(test::seed())}));

  ASSERT_EQ(std::to_string(lines.size()), count);
  for (const std::string& line : lines) {
    const std::size_t tab = line.find('\t');
    ASSERT_EQ(intValue(Value(test::fromHex(line.substr(0, tab)))), std::stoi(line.substr(tab + 1))) << line;
  }
  test::reached("T14 intValue", count + " texts");
}

}  // namespace
}  // namespace tavlo
