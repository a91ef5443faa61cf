#include "platform/Platform.h"

#include <atomic>

#include "common/Slot.h"

namespace tavlo::platform {
namespace {

class NoUserDefaults final : public UserDefaults {
 public:
  std::optional<Value> objectForKey(std::string_view) override { return std::nullopt; }
  void setObjectForKey(const Value&, std::string_view) override {}
  bool synchronize() override { return false; }
};

class NoConsole final : public Console {
 public:
  void log(std::string_view) override {}
};

// Constant-initialised, so that a platform library may set it before this file's own initialisation.
constinit std::atomic<Factory> defaultFactory{nullptr};

}  // namespace

UserDefaults& Platform::standardUserDefaults() {
  static NoUserDefaults none;
  return none;
}

Console& Platform::console() {
  static NoConsole none;
  return none;
}

void install(std::shared_ptr<Platform> platform) { processSlot<Platform>().store(std::move(platform)); }

std::shared_ptr<Platform> current() {
  if (auto platform = processSlot<Platform>().load()) return platform;
  if (const Factory factory = defaultFactory) {
    if (auto made = factory()) return processSlot<Platform>().fill(std::move(made));
  }
  return std::make_shared<Platform>();
}

void setDefaultFactory(Factory factory) { defaultFactory = factory; }

}  // namespace tavlo::platform
