#import "objc/Collaborators.h"

#import <Foundation/Foundation.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "common/Logger.h"
#include "common/Slot.h"
#include "common/TavloException.h"
#import "platform/apple/Bridge.h"
#import "platform/apple/Retained.h"
#include "request/DataBaseHandler.h"
#include "request/PackageReads.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"

namespace tavlo::objc {
namespace {

using apple_platform::Retained;
using apple_platform::stringOf;
using apple_platform::stringOfText;
using apple_platform::textOf;
using apple_platform::valueOf;

// What the object does for an operation, as the function that it is.
template <class Function>
Function methodOf(id object, SEL operation) {
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>([object methodForSelector:operation]));
}

// The answer to a message without arguments; without the operation nil, NO or 0.
template <class Answer>
Answer ask(id object, SEL operation) {
  if (![object respondsToSelector:operation]) return Answer();
  return methodOf<Answer (*)(id, SEL)>(object, operation)(object, operation);
}

template <class... Arguments>
void tell(id object, SEL operation, Arguments... arguments) {
  if (![object respondsToSelector:operation]) return;
  methodOf<void (*)(id, SEL, Arguments...)>(object, operation)(object, operation, arguments...);
}

// The record that the class gives; as the one that is installed, whoever knows where to get it.
class PackageAdapter final : public TavloPackage {
 public:
  explicit PackageAdapter(id record) : record_(record) {}
  explicit PackageAdapter(Class package) : package_(package) {}

  std::shared_ptr<TavloPackage> record() override {
    if (package_ == Nil) return nullptr;
    return std::make_shared<PackageAdapter>(ask<id>(package_, @selector(sharedInstance)));
  }

#define TAVLO_OVERRIDE(name) \
  Text name() const override { return textOf(ask<id>(record_.get(), @selector(name))); }
  TAVLO_PACKAGE_TEXT_READS(TAVLO_OVERRIDE)
#undef TAVLO_OVERRIDE

  bool limitAdTrackingEnabled() const override {
    return ask<BOOL>(record_.get(), @selector(limitAdTrackingEnabled)) != NO;
  }
  std::int32_t resolution() const override { return ask<std::int32_t>(record_.get(), @selector(resolution)); }
  std::int32_t preRoll() const override { return ask<std::int32_t>(record_.get(), @selector(preRoll)); }

  void setLatitudeAndLogitude(const Text& latitude, const Text& longitude) override {
    tell<id, id>(record_.get(), @selector(setLatitude:AndLogitude:), stringOfText(latitude), stringOfText(longitude));
  }
  void setUserAddress(const Text& address) override {
    tell<id>(record_.get(), @selector(setUserAddress:), stringOfText(address));
  }

 private:
  Retained record_;
  Class package_ = Nil;
};

class UniqueUserAdapter final : public TavloUniqueUserHandler {
 public:
  explicit UniqueUserAdapter(Class handler) : handler_(handler) {}

  std::int32_t isUserNew() const override { return integer(@selector(getIsUserNew)); }
  std::int32_t uniqueUserDayValue() const override { return integer(@selector(getUniqueUserDayValue)); }
  Text uniqueUserDay() const override { return textOf(ask<id>(handler_, @selector(getUniqueUserDay))); }
  std::int32_t uniqueUserWeekValue() const override { return integer(@selector(getUniqueUserWeekValue)); }
  std::int32_t numberOfWeek() const override { return integer(@selector(getNumberOfWeek)); }
  std::int32_t uniqueUserMonthValue() const override { return integer(@selector(getUniqueUserMonthValue)); }
  std::int32_t numberOfMonth() const override { return integer(@selector(getNumberOfMonth)); }

 private:
  [[nodiscard]] std::int32_t integer(SEL operation) const { return ask<std::int32_t>(handler_, operation); }

  Class handler_;
};

class DetailAdapter final : public NetworkTrackerDetail {
 public:
  explicit DetailAdapter(id detail) : detail_(detail) {}

  std::optional<Value> networkID() const override { return valueOf(ask<id>(detail_.get(), @selector(networkID))); }
  std::optional<Value> event() const override { return valueOf(ask<id>(detail_.get(), @selector(event))); }
  std::optional<Value> count() const override { return valueOf(ask<id>(detail_.get(), @selector(count))); }

 private:
  Retained detail_;
};

class DataBaseAdapter final : public DataBaseHandler {
 public:
  explicit DataBaseAdapter(Class handler) : handler_(handler) {}

  std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override {
    const id shared = ask<id>(handler_, @selector(sharedInastance));
    const id found = ask<id>(shared, @selector(getNetworkTrackerDetails));
    if (![found isKindOfClass:[NSArray class]]) return std::nullopt;
    NetworkTrackerDetails details;
    NSEnumerator* const each = [found objectEnumerator];
    while (const id detail = [each nextObject]) details.push_back(std::make_shared<DetailAdapter>(detail));
    return details;
  }

 private:
  Class handler_;
};

class LoggerAdapter final : public tavlo::Logger {
 public:
  explicit LoggerAdapter(Class logger) : logger_(logger) {}
  void writeLine(std::string_view message) override { tell<id>(logger_, @selector(printLog:), stringOf(message)); }

 private:
  Class logger_;
};

class ExceptionAdapter final : public tavlo::TavloException {
 public:
  explicit ExceptionAdapter(Class reporter) : reporter_(reporter) {}
  void report(std::string_view message) override { tell<id>(reporter_, @selector(tavloException:), stringOf(message)); }

 private:
  Class reporter_;
};

template <class Role, class Adapter>
void adopt(NSString* name) {
  const Class found = NSClassFromString(name);
  if (found != Nil) static_cast<void>(processSlot<Role>().fill(std::make_shared<Adapter>(found)));
}

}  // namespace

void adoptCollaborators() {
  adopt<TavloPackage, PackageAdapter>(@"TavloPackage");
  adopt<TavloUniqueUserHandler, UniqueUserAdapter>(@"TavloUniqueUserHandler");
  adopt<DataBaseHandler, DataBaseAdapter>(@"DataBaseHandler");
  adopt<tavlo::Logger, LoggerAdapter>(@"Logger");
  adopt<tavlo::TavloException, ExceptionAdapter>(@"TavloException");
}

}  // namespace tavlo::objc
