// Services on message buses.
#pragma once

#include <string>

namespace tavlo::linux_platform {

// Whether the service has this name, or can be started under it. Asked of the bus, for one second at most: an answer
// that comes later counts as no.
//
// Absent   false without a bus, in a child of fork(), and on the thread of MainLoop.h, which has to ask.
// Threads  any other, any time.
// Throws   std::bad_alloc.
[[nodiscard]] bool isOnSystemBus(const std::string& service);

// The same of the bus at this address.
[[nodiscard]] bool isOnBus(const std::string& address, const std::string& service);

}  // namespace tavlo::linux_platform
