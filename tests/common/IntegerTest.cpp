#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "common/Value.h"
#include "tests/support/Python.h"

namespace tavlo {
namespace {

constexpr std::int64_t kSmallest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest64 = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kAllOnes = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63U;

TEST(Integer, DecimalIsPythonsAtEveryEdge) {
  std::vector<std::uint64_t> words = {0, 1, 9, 10, 99, 100, kAllOnes, kAllOnes - 1, 10000000000000000000U};
  for (unsigned bit = 1; bit < 64; ++bit) {
    words.push_back((std::uint64_t{1} << bit) - 1);
    words.push_back(std::uint64_t{1} << bit);
  }
  std::string input;
  std::vector<std::string> decimals;
  for (const std::uint64_t high : words) {
    for (const std::uint64_t low : words) {
      const Integer integer{.high = static_cast<std::int64_t>(high), .low = low};
      input += std::to_string(high) + " " + std::to_string(low) + "\n";
      decimals.push_back(integer.decimal());
    }
  }

  const auto expected = test::splitLines(test::runOracle("property_list.py", {"decimal"}, input));

  EXPECT_EQ(decimals.size(), 135U * 135U);
  EXPECT_EQ(decimals, expected);
}

TEST(Integer, DecimalIsLiteral) {
  EXPECT_EQ((Integer{.high = 0, .low = 0}.decimal()), "0");
  EXPECT_EQ((Integer{.high = -1, .low = kAllOnes}.decimal()), "-1");
  EXPECT_EQ((Integer{.high = kSmallest64, .low = 0}.decimal()), "-170141183460469231731687303715884105728");
  EXPECT_EQ((Integer{.high = kLargest64, .low = kAllOnes}.decimal()), "170141183460469231731687303715884105727");
}

TEST(Integer, FitsTellsWhatSixtyFourBitsHold) {
  EXPECT_TRUE(Integer::of(kSmallest64).fitsSigned());
  EXPECT_FALSE(Integer::of(kSmallest64).fitsUnsigned());
  EXPECT_TRUE(Integer::of(kLargest64).fitsSigned());
  EXPECT_TRUE(Integer::of(kLargest64).fitsUnsigned());
  EXPECT_FALSE(Integer::of(kAllOnes).fitsSigned());
  EXPECT_TRUE(Integer::of(kAllOnes).fitsUnsigned());
  EXPECT_FALSE((Integer{.high = -1, .low = kTwoTo63 - 1}.fitsSigned()));
  EXPECT_FALSE((Integer{.high = 1, .low = 0}.fitsUnsigned()));
}

}  // namespace
}  // namespace tavlo
