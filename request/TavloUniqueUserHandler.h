// TavloUniqueUserHandler: the SDK's unique-user counters. The host app brings them
// (host/UniqueUserCounters.h keeps them on disk) and installs them; the request builders only read.
//
// Absent   with nothing installed every integer is 0 and the day marker absent.
// Threads  any thread, any time; each of the seven reads stands for itself.
#pragma once

#include <cstdint>
#include <memory>

#include "common/Text.h"

namespace tavlo {

class TavloUniqueUserHandler {
 public:
  TavloUniqueUserHandler() = default;
  TavloUniqueUserHandler(const TavloUniqueUserHandler&) = delete;
  TavloUniqueUserHandler& operator=(const TavloUniqueUserHandler&) = delete;
  virtual ~TavloUniqueUserHandler() = default;

  // The class operations of the contract: each asks the installed handler once.
  [[nodiscard]] static std::int32_t getIsUserNew();
  [[nodiscard]] static std::int32_t getUniqueUserDayValue();
  [[nodiscard]] static Text getUniqueUserDay();
  [[nodiscard]] static std::int32_t getUniqueUserWeekValue();
  [[nodiscard]] static std::int32_t getNumberOfWeek();
  [[nodiscard]] static std::int32_t getUniqueUserMonthValue();
  [[nodiscard]] static std::int32_t getNumberOfMonth();

  static void install(std::shared_ptr<TavloUniqueUserHandler> handler);
  [[nodiscard]] static std::shared_ptr<TavloUniqueUserHandler> installed();

  [[nodiscard]] virtual std::int32_t isUserNew() const = 0;
  [[nodiscard]] virtual std::int32_t uniqueUserDayValue() const = 0;
  [[nodiscard]] virtual Text uniqueUserDay() const = 0;  // the marker of the day of the day value
  [[nodiscard]] virtual std::int32_t uniqueUserWeekValue() const = 0;
  [[nodiscard]] virtual std::int32_t numberOfWeek() const = 0;
  [[nodiscard]] virtual std::int32_t uniqueUserMonthValue() const = 0;
  [[nodiscard]] virtual std::int32_t numberOfMonth() const = 0;
};

}  // namespace tavlo
