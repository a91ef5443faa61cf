// NSKeyedUnarchiver: the other reader of keyed archives, for objects of the app's own classes, which the component's
// own decoder knows by name only.
//
// Absent   nil for bytes that it cannot read, a class that is not there included; what it raises is caught.
// Threads  any thread.
//
// Run here over GNUstep Base, whose archives the tests read with both.
#pragma once

#import <Foundation/Foundation.h>

#include <string_view>

namespace tavlo::apple_platform {

[[nodiscard]] id unarchived(std::string_view bytes);

}  // namespace tavlo::apple_platform
