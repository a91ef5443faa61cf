// A test with an autorelease pool of its own.
#pragma once

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

namespace tavlo::test {

class PoolTest : public testing::Test {
 protected:
  PoolTest() = default;
  ~PoolTest() override { [pool_ drain]; }

 private:
  NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];
};

}  // namespace tavlo::test
