// The desktop's position service (GeoClue), through the system's message bus.
//
// The desktop decides on a permission only when a client starts, so nothing is asked before requestAuthorization(),
// which starts the one client of the process: for all platforms and location managers, under the desktop id of the
// platform that asked first. It runs until it ends by itself.
//
//   state                               services   authorization   location()        requests that wait
//   no client asked for yet             see below  0               none
//   no bus, no daemon on it             off        0               the newest fix    0, no fix
//   client starts (a person may be      on         as before       the newest fix    wait
//     asked by the desktop's agent)
//   no agent, daemon hangs, nobody      on         0               the newest fix    0, no fix, when the time
//     answers                                                                        limit is over
//   refused, or switched off for        on         2               the newest fix    2, no fix
//     this user
//   allowed, without a fix yet          on         3               the newest fix    3; a fix is waited for
//   allowed, with fixes                 on         3               the newest fix    3, the fix
//   allowed, but no source of the       on         1               the newest fix    1; a fix is waited for
//     desktop's has any accuracy
//   daemon or bus ended, or no memory   see below  0               the newest fix    0, no fix
//     was left, while a client started
//     or lived
//
// A client that has ended leaves the newest fix, and the next requestAuthorization() starts anew. While a client is
// allowed, authorization goes from 3 to 1 and back as the desktop's sources come and go.
//
// Values   coordinates as the daemon tells them; those that are no place on earth are left out. Fixes are asked for in
//          the best accuracy; a manager's distance filter and desired accuracy change nothing, and
//          startUpdatingLocation() does nothing, since all fixes come from the one client.
// Absent   location() when no fix has come in this process. requestLocation() when there is no client.
// Threads  any thread, any time. locationServicesEnabled() is true at once while a client is allowed; else it asks the
//          bus whether the daemon runs or can be started, for one second at most, and an answer that comes later counts
//          as off; so does asking on the thread of MainLoop.h with no client allowed. Nothing else waits. Handlers: see
//          LocationState.h. In a child of fork() there is no bus.
// Throws   std::invalid_argument from check(), with a message that names the option.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/Location.h"

namespace tavlo::linux_platform {

struct LocationOptions {
  std::string desktopId{};                          // UTF-8; empty: the domain. Names the app to the desktop
  std::chrono::milliseconds authorization{60'000};  // for the desktop's decision, 1 ms to a day
};

void check(const LocationOptions& options);

// nullptr when the library is built without the position service.
[[nodiscard]] std::shared_ptr<platform::LocationServices> makeDesktopLocation(const LocationOptions& options);

}  // namespace tavlo::linux_platform
