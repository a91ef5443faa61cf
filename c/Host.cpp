// What a host app brings, over its tables.
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "c/Boundary.h"
#include "c/Callbacks.h"
#include "c/tavlo_host.h"
#include "common/Logger.h"
#include "common/TavloException.h"
#include "request/DataBaseHandler.h"
#include "request/PackageReads.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo::c {
namespace {

class Package final : public TavloPackage {
 public:
  explicit Package(const tavlo_package& table) : callbacks(table, "tavlo_package") {}

#define TAVLO_OVERRIDE(name) \
  Text name() const override { return text(TAVLO_PACKAGE_##name); }
  TAVLO_PACKAGE_TEXT_READS(TAVLO_OVERRIDE)
#undef TAVLO_OVERRIDE
  bool limitAdTrackingEnabled() const override { return callbacks.call(&tavlo_package::limitAdTrackingEnabled); }
  std::int32_t resolution() const override { return callbacks.call(&tavlo_package::resolution); }
  std::int32_t preRoll() const override { return callbacks.call(&tavlo_package::preRoll); }

  void setLatitudeAndLogitude(const Text& latitude, const Text& longitude) override {
    callbacks.call(&tavlo_package::setLatitudeAndLogitude, borrowed(latitude), borrowed(longitude));
  }
  void setUserAddress(const Text& address) override {
    callbacks.call(&tavlo_package::setUserAddress, borrowed(address));
  }

  Callbacks<tavlo_package> callbacks;

 private:
  [[nodiscard]] Text text(tavlo_package_text which) const { return answerOf(callbacks, &tavlo_package::text, which); }
};

class UniqueUserHandler final : public TavloUniqueUserHandler {
 public:
  using Table = tavlo_unique_user_handler;
  explicit UniqueUserHandler(const Table& table) : callbacks(table, "tavlo_unique_user_handler") {}

  std::int32_t isUserNew() const override { return callbacks.call(&Table::getIsUserNew); }
  std::int32_t uniqueUserDayValue() const override { return callbacks.call(&Table::getUniqueUserDayValue); }
  Text uniqueUserDay() const override { return answerOf(callbacks, &Table::getUniqueUserDay); }
  std::int32_t uniqueUserWeekValue() const override { return callbacks.call(&Table::getUniqueUserWeekValue); }
  std::int32_t numberOfWeek() const override { return callbacks.call(&Table::getNumberOfWeek); }
  std::int32_t uniqueUserMonthValue() const override { return callbacks.call(&Table::getUniqueUserMonthValue); }
  std::int32_t numberOfMonth() const override { return callbacks.call(&Table::getNumberOfMonth); }

  Callbacks<Table> callbacks;
};

class Record final : public NetworkTrackerDetail {
 public:
  Record(std::optional<Value> networkId, std::optional<Value> event, std::optional<Value> count)
      : networkId_(std::move(networkId)), event_(std::move(event)), count_(std::move(count)) {}

  std::optional<Value> networkID() const override { return networkId_; }
  std::optional<Value> event() const override { return event_; }
  std::optional<Value> count() const override { return count_; }

 private:
  const std::optional<Value> networkId_;
  const std::optional<Value> event_;
  const std::optional<Value> count_;
};

using Records = Added<std::shared_ptr<const NetworkTrackerDetail>, tavlo_tracker_records>;

class DatabaseHandler final : public DataBaseHandler {
 public:
  explicit DatabaseHandler(const tavlo_database_handler& table) : callbacks(table, "tavlo_database_handler") {}

  std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override {
    Records records;
    callbacks.call(&tavlo_database_handler::getNetworkTrackerDetails, records.handle());
    return records.taken();
  }

  Callbacks<tavlo_database_handler> callbacks;
};

class Log final : public Logger {
 public:
  explicit Log(const tavlo_logger& table) : callbacks(table, "tavlo_logger") {}

  void writeLine(std::string_view message) override { callbacks.call(&tavlo_logger::printLog, borrowed(message)); }

  Callbacks<tavlo_logger> callbacks;
};

class Reporter final : public TavloException {
 public:
  explicit Reporter(const tavlo_exception_reporter& table) : callbacks(table, "tavlo_exception_reporter") {}

  void report(std::string_view message) override {
    const auto callback = &tavlo_exception_reporter::tavloException;
    if (callbacks.has(callback) && !callbacks.call(callback, borrowed(message))) {
      throw ReporterFailed("the exception reporter failed on: " + std::string(message));
    }
  }

  Callbacks<tavlo_exception_reporter> callbacks;
};

// Puts a collaborator over the table into its slot, or empties that.
template <class Collaborator, class Table, class Slot>
tavlo_status install(const char* function, const Table* table, void (*slot)(std::shared_ptr<Slot>)) noexcept {
  return guarded(function, [=] {
    if (!table) return slot(nullptr);
    const auto collaborator = std::make_shared<Collaborator>(*table);
    collaborator->callbacks.installed();
    slot(collaborator);
  });
}

}  // namespace
}  // namespace tavlo::c

using tavlo::c::DatabaseHandler;
using tavlo::c::guarded;
using tavlo::c::install;
using tavlo::c::Log;
using tavlo::c::optionalValue;
using tavlo::c::Package;
using tavlo::c::Record;
using tavlo::c::Records;
using tavlo::c::Reporter;
using tavlo::c::require;
using tavlo::c::UniqueUserHandler;
using tavlo::c::viewOf;

tavlo_status tavlo_package_install(const tavlo_package* package) {
  return install<Package>(__func__, package, &tavlo::TavloPackage::install);
}
tavlo_status tavlo_unique_user_handler_install(const tavlo_unique_user_handler* handler) {
  return install<UniqueUserHandler>(__func__, handler, &tavlo::TavloUniqueUserHandler::install);
}
tavlo_status tavlo_database_handler_install(const tavlo_database_handler* handler) {
  return install<DatabaseHandler>(__func__, handler, &tavlo::DataBaseHandler::install);
}
tavlo_status tavlo_logger_install(const tavlo_logger* logger) {
  return install<Log>(__func__, logger, &tavlo::Logger::install);
}
tavlo_status tavlo_exception_reporter_install(const tavlo_exception_reporter* reporter) {
  return install<Reporter>(__func__, reporter, &tavlo::TavloException::install);
}

tavlo_status tavlo_tracker_records_add(tavlo_tracker_records* records, const tavlo_value* networkId,
                                       const tavlo_value* event, const tavlo_value* count) {
  return guarded(__func__, [=] {
    require(records, "the records");
    Records::of(records).add(
        [=] { return std::make_shared<Record>(optionalValue(networkId), optionalValue(event), optionalValue(count)); });
  });
}

tavlo_status tavlo_print_log(tavlo_text message) {
  return guarded(__func__, [=] { tavlo::Logger::printLog(viewOf(message, "the message")); });
}
