#include "platform/linux/LinuxPlatform.h"

#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/linux/Container.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxUrlData.h"
#include "platform/linux/SettingsStore.h"
#include "platform/linux/StandardErrorConsole.h"
#include "platform/linux/WorkerQueue.h"

namespace tavlo::linux_platform {
namespace {

class LinuxPlatform final : public platform::Platform {
 public:
  LinuxPlatform(std::optional<Container> container, const Options& options)
      : container_(std::move(container)),
        quietConsole_(options.quietConsole),
        workers_(options.downloads.workers),
        urlData_(std::make_shared<LinuxUrlData>(options.downloads, options.certificateAuthorities)),
        locationServices_(options.locationServices),
        geocoder_(options.geocoder) {}

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

  // What HTTP cleans up when the process exits must outlive the workers, so it is set up before the first one.
  platform::BackgroundQueue& backgroundQueue() override {
    std::call_once(queueMade_, [this] {
      prepareHttp();
      queue_.emplace(workers_, [urlData = urlData_] { urlData->cancel(); });
    });
    return *queue_;
  }

  platform::UrlData& urlData() override { return *urlData_; }

  platform::LocationServices& locationServices() override {
    return locationServices_ ? *locationServices_ : Platform::locationServices();
  }

  std::shared_ptr<platform::Geocoder> makeGeocoder() override {
    return geocoder_ ? geocoder_ : Platform::makeGeocoder();
  }

 private:
  const std::optional<Container> container_;
  const bool quietConsole_;
  StandardErrorConsole console_;
  std::once_flag settingsMade_;
  std::optional<SettingsStore> settings_;
  std::once_flag filesMade_;
  std::optional<LinuxFileManager> files_;
  const int workers_;
  const std::shared_ptr<LinuxUrlData> urlData_;  // shared with the exit handler, which may cancel it at any time
  std::once_flag queueMade_;
  std::optional<WorkerQueue> queue_;
  const std::shared_ptr<platform::LocationServices> locationServices_;
  const std::shared_ptr<platform::Geocoder> geocoder_;
};

void check(const std::optional<std::filesystem::path>& certificateAuthorities) {
  if (!certificateAuthorities) return;
  const std::string& path = certificateAuthorities->native();
  if (!path.empty() && path.find('\0') == std::string::npos) return;
  throw std::invalid_argument("the option \"certificateAuthorities\" must be a path, not empty and without a NUL");
}

}  // namespace

std::shared_ptr<platform::Platform> make(const Options& options) {
  check(options.downloads);
  check(options.certificateAuthorities);
  return std::make_shared<LinuxPlatform>(Container::locate(options.container, options.domain), options);
}

}  // namespace tavlo::linux_platform
