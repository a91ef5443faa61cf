// LocationState: what the process knows of its position and of its permission, and who waits to hear of it.
//
//   a client's life      authorization   what waits for it
//   none yet             0
//   begins               as before       requests for permission, then for a fix
//   allowed              3, or 1 while no source of the desktop's has any accuracy
//   ended                as told         is answered: permission with that number, a fix with none
//
// Values   statuses are those of platform/Location.h. The newest fix is kept when its client has ended.
// Absent   no fix has come yet. An empty handler is not told. A fix that is no place on earth is none.
// Threads  any thread, any time. Handlers run one after another on one thread of this process's own, with no lock
//          held; without memory for that, on the thread that brings the answer. The process's exit drops those that
//          have not begun.
// Throws   std::bad_alloc from the requests, which then are none; the rest nothing. What a handler throws ends its own
//          run only.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/Location.h"

namespace tavlo::linux_platform {

class LocationState {
 public:
  using StatusHandler = platform::LocationServices::StatusHandler;
  using LocationHandler = platform::LocationServices::LocationHandler;

  [[nodiscard]] std::int32_t authorizationStatus() const;
  [[nodiscard]] std::optional<platform::Location> location() const;

  // Whether a client has been allowed, and lives.
  [[nodiscard]] bool isAllowed() const;

  // True: there is no client, and the caller has to begin one. Answered at once when a client is allowed.
  [[nodiscard]] bool requestAuthorization(StatusHandler answered);

  // Answered at once when a client that lives has had a fix, and when there is no client.
  void requestLocation(LocationHandler answered);

  // What becomes of the client.
  void allowed(bool hasAccuracy);
  void hasAccuracy(bool any);
  void moved(const platform::Location& location);
  void ended(std::int32_t status);

 private:
  enum class Life { none, begins, allowed };

  mutable std::mutex mutex_;
  Life life_ = Life::none;
  bool fresh_ = false;  // whether the fix is of the client that lives
  std::int32_t status_ = platform::kCLAuthorizationStatusNotDetermined;
  std::optional<platform::Location> location_;
  std::vector<StatusHandler> awaitStatus_;
  std::vector<LocationHandler> awaitLocation_;
};

}  // namespace tavlo::linux_platform
