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

// What stands for a missing service is never destroyed, like the slots: threads and exit handlers may still
// ask for it while the process ends.
UserDefaults& Platform::standardUserDefaults() {
  static auto* const none = new NoUserDefaults;
  return *none;
}

Console& Platform::console() {
  static auto* const none = new NoConsole;
  return *none;
}

void install(std::shared_ptr<Platform> platform) { processSlot<Platform>().store(std::move(platform)); }

std::shared_ptr<Platform> current() {
  if (auto platform = processSlot<Platform>().load()) return platform;
  if (const Factory factory = defaultFactory) {
    if (auto made = factory()) return processSlot<Platform>().fill(std::move(made));
  }
  static const auto* const none = new std::shared_ptr<Platform>(std::make_shared<Platform>());
  return *none;
}

void setDefaultFactory(Factory factory) { defaultFactory = factory; }

}  // namespace tavlo::platform
