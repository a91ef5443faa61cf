// LocationWatch: a position fetch whose steps are seen and can be waited for.
//
// Threads  for one thread. What is asked for is answered on any; an answer that comes when nobody waits any more, or
//          the LocationWatch is gone, does no harm.
// Throws   Failure when the system has no event to wait for.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "cli/Event.h"
#include "platform/Platform.h"

namespace tavlo::cli {

// What a fetch met so far.
struct LocationReport {
  bool isAsked = false;  // the user was, for permission
  bool enabled = false;
  std::optional<std::int32_t> status;                        // absent: not read, since the services are off
  std::vector<std::optional<platform::Location>> positions;  // each time that it was read
  bool isLookedUp = false;                                   // a geocoder was asked
  bool isOver = false;                                       // it answered, or never will
  bool isAnswered = false;                                   // it answered
  std::optional<platform::Placemarks> placemarks;
  Text error;
};

class LocationWatch {
 public:
  // Installs a platform that is the real one but for what it sees.
  explicit LocationWatch(std::shared_ptr<platform::Platform> real);
  LocationWatch(const LocationWatch&) = delete;
  LocationWatch& operator=(const LocationWatch&) = delete;
  ~LocationWatch();

  // Asks the user for permission, and waits for the status.
  WaitEnd askPermission(const Patience& patience);

  // Asks for one fix, and waits for it or for the answer that none will come.
  WaitEnd askPosition(const Patience& patience);
  [[nodiscard]] bool hasPosition() const;  // that it came

  // TavloUtility::fetchCurrentLocation(), and waits for the geocoder, if it was asked.
  WaitEnd fetch(const Patience& patience);

  [[nodiscard]] LocationReport report() const;

 private:
  class Board;
  class WatchingPlatform;

  const std::shared_ptr<platform::Platform> real_;
  const std::shared_ptr<Board> board_;
};

}  // namespace tavlo::cli
