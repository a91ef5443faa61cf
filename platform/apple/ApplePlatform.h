// The platform over Foundation, UIKit and CoreLocation.
//
//   tavlo::platform::install(tavlo::apple_platform::make());
//
// The Objective-C class TavloUtility makes it the default when it is first used.
//
// Threads  any thread that has an autorelease pool, any time; what shows something, the main thread.
//
// Run here over GNUstep Base, against stand-ins where UIKit and CoreLocation are needed; docs/objective-c.md has the
// list.
#pragma once

#include <memory>

#include "platform/Platform.h"

namespace tavlo::apple_platform {

[[nodiscard]] std::shared_ptr<platform::Platform> make();

}  // namespace tavlo::apple_platform
