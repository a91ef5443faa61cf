// A session that is held in memory as a whole: everything that the four requests are made from, fixed.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/Text.h"
#include "host/SessionRecord.h"
#include "host/TrackerDatabase.h"
#include "platform/Platform.h"
#include "request/DataBaseHandler.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo::cli {

struct UserCounters {
  std::int32_t isUserNew = 0;
  std::int32_t dayValue = 0;
  Text day;
  std::int32_t weekValue = 0;
  std::int32_t week = 0;
  std::int32_t monthValue = 0;
  std::int32_t month = 0;
};

struct Session {
  std::shared_ptr<host::SessionRecord> package = std::make_shared<host::SessionRecord>();
  UserCounters counters;
  std::optional<std::vector<host::TrackerEvent>> trackerRecords;
  std::map<std::string, std::string, std::less<>> identifiers;  // by their key in the settings
};

// The tracker records of a session as the component asks for them.
[[nodiscard]] std::shared_ptr<DataBaseHandler> fixedRecords(std::optional<std::vector<host::TrackerEvent>> records);

// Puts the session in place for the whole process, with settings that hold the identifiers and are never
// written anywhere, and the console of `outside`.
void install(const Session& session, std::shared_ptr<platform::Platform> outside);

}  // namespace tavlo::cli
