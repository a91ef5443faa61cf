// The process-wide slots of the classes that the rest of the SDK brings, and the class operations that read
// them.
#include <utility>

#include "common/Slot.h"
#include "request/DataBaseHandler.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo {
namespace {

template <class Result>
Result ask(Result (TavloUniqueUserHandler::*read)() const) {
  const auto handler = TavloUniqueUserHandler::installed();
  return handler ? (*handler.*read)() : Result{};
}

}  // namespace

std::shared_ptr<TavloPackage> TavloPackage::sharedInstance() {
  auto package = processSlot<TavloPackage>().load();
  auto record = package ? package->record() : nullptr;
  return record ? std::move(record) : std::move(package);
}

void TavloPackage::install(std::shared_ptr<TavloPackage> package) {
  processSlot<TavloPackage>().store(std::move(package));
}

std::shared_ptr<DataBaseHandler> DataBaseHandler::sharedInastance() { return processSlot<DataBaseHandler>().load(); }

void DataBaseHandler::install(std::shared_ptr<DataBaseHandler> handler) {
  processSlot<DataBaseHandler>().store(std::move(handler));
}

std::shared_ptr<TavloUniqueUserHandler> TavloUniqueUserHandler::installed() {
  return processSlot<TavloUniqueUserHandler>().load();
}

void TavloUniqueUserHandler::install(std::shared_ptr<TavloUniqueUserHandler> handler) {
  processSlot<TavloUniqueUserHandler>().store(std::move(handler));
}

std::int32_t TavloUniqueUserHandler::getIsUserNew() { return ask(&TavloUniqueUserHandler::isUserNew); }
std::int32_t TavloUniqueUserHandler::getUniqueUserDayValue() {
  return ask(&TavloUniqueUserHandler::uniqueUserDayValue);
}
Text TavloUniqueUserHandler::getUniqueUserDay() { return ask(&TavloUniqueUserHandler::uniqueUserDay); }
std::int32_t TavloUniqueUserHandler::getUniqueUserWeekValue() {
  return ask(&TavloUniqueUserHandler::uniqueUserWeekValue);
}
std::int32_t TavloUniqueUserHandler::getNumberOfWeek() { return ask(&TavloUniqueUserHandler::numberOfWeek); }
std::int32_t TavloUniqueUserHandler::getUniqueUserMonthValue() {
  return ask(&TavloUniqueUserHandler::uniqueUserMonthValue);
}
std::int32_t TavloUniqueUserHandler::getNumberOfMonth() { return ask(&TavloUniqueUserHandler::numberOfMonth); }

}  // namespace tavlo
