// Tests that fail, to show what a red run prints.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo::test {
namespace {

TEST(Failing, WithASeed) {
  reached("T0", std::to_string(figure(20, 1000)) + " rounds");
  EXPECT_EQ(seed(), 0U);
}

TEST(Failing, WithoutASeed) { ADD_FAILURE(); }

TEST(Passing, WithASeed) { EXPECT_EQ(seed(), seed()); }

}  // namespace
}  // namespace tavlo::test
