// UniqueUserCounters: the unique-user counters, kept in the host's database.
//
//   auto counters = std::make_shared<tavlo::host::UniqueUserCounters>(database);
//   tavlo::TavloUniqueUserHandler::install(counters);
//   counters->recordUse();  // once a session, say
//
// Values   of the last recorded use: each value is 1 when that use was the first one of its day, ISO 8601 week
//          or month, else 0; isUserNew() is 1 when it was the first one ever. The day marker is the day of
//          the year in decimal ("1" to "366"), weeks are numbered 1 to 53, months 1 to 12. All in UTC.
//          Every day of use is remembered, so a clock that was set back counts no period twice.
// Absent   before the first use ever all integers are 0 and the day marker is absent.
// Durable  as host/Database.h says: a use is on disk when recordUse() returns.
// Threads  any thread, any time. Reads are from memory and change nothing; each is whole. Several processes
//          count together; a process sees the uses that others recorded when it records one itself.
// Throws   the constructor and recordUse(): DatabaseError. A recordUse() that throws changes nothing.
#pragma once

#include <cstdint>
#include <memory>

#include "common/Slot.h"
#include "common/Text.h"
#include "host/Clock.h"
#include "host/Database.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo::host {

class UniqueUserCounters final : public TavloUniqueUserHandler {
 public:
  explicit UniqueUserCounters(std::shared_ptr<Database> database, Clock clock = systemClock());

  void recordUse();

  [[nodiscard]] std::int32_t isUserNew() const override;
  [[nodiscard]] std::int32_t uniqueUserDayValue() const override;
  [[nodiscard]] Text uniqueUserDay() const override;
  [[nodiscard]] std::int32_t uniqueUserWeekValue() const override;
  [[nodiscard]] std::int32_t numberOfWeek() const override;
  [[nodiscard]] std::int32_t uniqueUserMonthValue() const override;
  [[nodiscard]] std::int32_t numberOfMonth() const override;

 private:
  // The answers of the seven reads.
  struct Counters {
    std::int32_t isUserNew = 0;
    std::int32_t dayValue = 0;
    Text day;
    std::int32_t weekValue = 0;
    std::int32_t week = 0;
    std::int32_t monthValue = 0;
    std::int32_t month = 0;
  };

  [[nodiscard]] static std::shared_ptr<const Counters> countersOf(const Database::Rows& lastUse);

  const std::shared_ptr<Database> database_;
  const Clock clock_;
  Slot<const Counters> counters_;
};

}  // namespace tavlo::host
