#include "platform/linux/LinuxPlatform.h"

#include <mutex>
#include <utility>

#include "platform/linux/Container.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/SettingsStore.h"
#include "platform/linux/StandardErrorConsole.h"

namespace tavlo::linux_platform {
namespace {

class LinuxPlatform final : public platform::Platform {
 public:
  LinuxPlatform(std::optional<Container> container, bool quietConsole)
      : container_(std::move(container)), quietConsole_(quietConsole) {}

  platform::UserDefaults& standardUserDefaults() override {
    if (!container_) return Platform::standardUserDefaults();
    std::call_once(settingsMade_, [this] { settings_.emplace(*container_, console()); });
    return *settings_;
  }

  platform::FileManager& fileManager() override {
    if (!container_) return Platform::fileManager();
    std::call_once(filesMade_, [this] { files_.emplace(*container_); });
    return *files_;
  }

  platform::Console& console() override { return quietConsole_ ? Platform::console() : console_; }

 private:
  const std::optional<Container> container_;
  const bool quietConsole_;
  StandardErrorConsole console_;
  std::once_flag settingsMade_;
  std::optional<SettingsStore> settings_;
  std::once_flag filesMade_;
  std::optional<LinuxFileManager> files_;
};

}  // namespace

std::shared_ptr<platform::Platform> make(const Options& options) {
  return std::make_shared<LinuxPlatform>(Container::locate(options.container, options.domain), options.quietConsole);
}

}  // namespace tavlo::linux_platform
