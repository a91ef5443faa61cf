// Host: everything that the component asks of a host app, opened for one container folder and installed.
//
//   tavlo::host::Host host("/data/app");
//   host.session().set(tavlo::PackageText::app_version, "1.4");
//   host.counters().recordUse();
//   host.tracker().addEvent("network-7", "impression");
//   std::string query = tavlo::TavloUtility::getAdditionalRequestingString();
//
// Values   the database is CONTAINER/Library/tracker.sqlite, the log CONTAINER/Documents/TavloCache/
//          TavloLogFile.txt. A missing CONTAINER or Library is made, mode 0700.
// Threads  any thread, any time.
// Throws   the constructor: DatabaseError, and then nothing is installed.
//
// What a Host installs stays in place when the Host is gone, until something else is installed.
#pragma once

#include <filesystem>
#include <memory>

#include "host/Clock.h"
#include "host/Database.h"
#include "host/LogFileWriter.h"
#include "host/SessionRecord.h"
#include "host/TrackerDatabase.h"
#include "host/UniqueUserCounters.h"

namespace tavlo::host {

class Host {
 public:
  explicit Host(const std::filesystem::path& container, const Clock& clock = systemClock(),
                DatabaseOptions options = {});

  [[nodiscard]] SessionRecord& session() { return *session_; }
  [[nodiscard]] UniqueUserCounters& counters() { return *counters_; }
  [[nodiscard]] TrackerDatabase& tracker() { return *tracker_; }

  // Where the database of a container lies. Its folder is made when it is missing, mode 0700.
  [[nodiscard]] static std::filesystem::path databaseFile(const std::filesystem::path& container);

 private:
  std::shared_ptr<SessionRecord> session_ = std::make_shared<SessionRecord>();
  std::shared_ptr<UniqueUserCounters> counters_;
  std::shared_ptr<TrackerDatabase> tracker_;
};

}  // namespace tavlo::host
