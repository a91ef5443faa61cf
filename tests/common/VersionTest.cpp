#include <gtest/gtest.h>

#include <string>

#include "TavloVersion.h"

namespace {

constexpr int kMajor = TAVLO_VERSION_MAJOR;
constexpr int kMinor = TAVLO_VERSION_MINOR;
constexpr int kPatch = TAVLO_VERSION_PATCH;

TEST(VersionTest, TextIsTheThreeNumbersWithDots) {
  EXPECT_EQ(TAVLO_VERSION, std::to_string(kMajor) + "." + std::to_string(kMinor) + "." + std::to_string(kPatch));
}

TEST(VersionTest, IsAtLeastItselfAndAllBefore) {
  EXPECT_TRUE(TAVLO_VERSION_AT_LEAST(kMajor, kMinor, kPatch));
  EXPECT_TRUE(TAVLO_VERSION_AT_LEAST(kMajor, kMinor, kPatch - 1));
  EXPECT_TRUE(TAVLO_VERSION_AT_LEAST(kMajor, kMinor - 1, kPatch + 1));
  EXPECT_TRUE(TAVLO_VERSION_AT_LEAST(kMajor - 1, kMinor + 1, kPatch + 1));
}

TEST(VersionTest, IsBelowAllAfter) {
  EXPECT_FALSE(TAVLO_VERSION_AT_LEAST(kMajor, kMinor, kPatch + 1));
  EXPECT_FALSE(TAVLO_VERSION_AT_LEAST(kMajor, kMinor + 1, kPatch));
  EXPECT_FALSE(TAVLO_VERSION_AT_LEAST(kMajor + 1, kMinor - 1, kPatch - 1));
}

// The preprocessor reads it, too.
#if !TAVLO_VERSION_AT_LEAST(0, 0, 1) || TAVLO_VERSION_AT_LEAST(1000, 0, 0)
#error "no version of this library"
#endif

}  // namespace
