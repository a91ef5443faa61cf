// The services of Foundation that are a call or two each: settings, console, background queue, fetches.
//
// Run here over GNUstep Base; the queue over its operation queue, as there is no libdispatch.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/BackgroundQueue.h"
#include "platform/Console.h"
#include "platform/UrlData.h"
#include "platform/UserDefaults.h"

namespace tavlo::apple_platform {

// NSUserDefaults' standard ones, shared with the app. A value that they cannot hold is left out.
class AppleUserDefaults final : public platform::UserDefaults {
 public:
  [[nodiscard]] std::optional<Value> objectForKey(std::string_view key) override;
  void setObjectForKey(const Value& value, std::string_view key) override;
  // Durable as far as the platform's own are: GNUstep Base does not flush.
  [[nodiscard]] bool synchronize() override;
};

// NSLog.
class AppleConsole final : public platform::Console {
 public:
  void log(std::string_view message) override;
};

// The global queue of background priority, or an operation queue of the lowest priority where there is no libdispatch.
// Tasks have an autorelease pool each.
class AppleQueue final : public platform::BackgroundQueue {
 public:
  void dispatchAsync(std::function<void()> task) override;
};

// NSData's fetch, or NSURLHandle's with GNUstep Base; what raises is absent. The strict grammar decides what is a URL,
// once tabs and newlines are taken out, whatever the system's version takes for one.
class AppleUrlData final : public platform::UrlData {
 public:
  [[nodiscard]] std::optional<std::string> dataWithContentsOfUrl(std::string_view url) override;
};

}  // namespace tavlo::apple_platform
