#include <gtest/gtest.h>

#include <limits>

#include "common/Numbered.h"

namespace tavlo {
namespace {

TEST(Numbered, NumbersStandWhereThePatternSays) {
  EXPECT_EQ(numbered("object # at byte #: unknown", {7, 0}), "object 7 at byte 0: unknown");
  EXPECT_EQ(numbered("#", {std::numeric_limits<std::uint64_t>::max()}), "18446744073709551615");
  EXPECT_EQ(numbered("##", {1, 23}), "123");
}

TEST(Numbered, WhatHasNoNumberStaysAsItIs) {
  EXPECT_EQ(numbered("", {}), "");
  EXPECT_EQ(numbered("no number", {}), "no number");
  EXPECT_EQ(numbered("# and #", {5}), "5 and #");
  EXPECT_EQ(numbered("none", {5}), "none");
}

}  // namespace
}  // namespace tavlo
