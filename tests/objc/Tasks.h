// The tasks of the background queue over Foundation.
#pragma once

#import <Foundation/Foundation.h>

#include "platform/Platform.h"
#import "platform/apple/ApplePlatform.h"
#include "tests/support/Gate.h"

namespace tavlo::test {

// Returns when every task that was handed over so far has run. A task asks the queue which one it is.
inline void waitForTasks() {
  static NSOperationQueue* const queue = [] {
    const auto platform = apple_platform::make();
    Gate isKnown;
    NSOperationQueue* found = nil;
    platform->backgroundQueue().dispatchAsync([&] {
      found = [NSOperationQueue currentQueue];
      isKnown.open();
    });
    isKnown.wait();
    return found;
  }();
  [queue waitUntilAllOperationsAreFinished];
}

}  // namespace tavlo::test
