#include "platform/linux/LinuxPlatform.h"

#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "common/Utf8.h"
#include "platform/linux/Container.h"
#include "platform/linux/DesktopApplication.h"
#include "platform/linux/LinuxBundles.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxUrlData.h"
#include "platform/linux/PngImages.h"
#include "platform/linux/SettingsStore.h"
#include "platform/linux/StandardErrorConsole.h"
#include "platform/linux/WorkerQueue.h"

namespace tavlo::linux_platform {
namespace {

// A relative path is one of the folder that is current now.
Text resourcesOf(const Options& options, const std::optional<Container>& container) {
  std::error_code unknown;  // where the current folder is: the path stays relative
  if (options.resources) {
    const auto whole = std::filesystem::absolute(*options.resources, unknown);
    return (unknown ? *options.resources : whole).native();
  }
  return container ? Text(container->resources().native()) : std::nullopt;
}

std::shared_ptr<platform::LocationServices> locationServicesOf(const Options& options,
                                                               const std::optional<Container>& container) {
  if (options.locationServices) return options.locationServices;
  LocationOptions location = options.location;
  const std::string& domain = container ? container->domain() : options.domain;
  if (location.desktopId.empty() && isUtf8(domain)) location.desktopId = domain;
  return makeDesktopLocation(location);
}

std::shared_ptr<platform::Geocoder> geocoderOf(const Options& options, const std::optional<Container>& container) {
  if (options.geocoder) return options.geocoder;
  return makeLinuxGeocoder(options.geocoding, container ? container->domain() : options.domain,
                           options.certificateAuthorities);
}

class LinuxPlatform final : public platform::Platform {
 public:
  LinuxPlatform(std::optional<Container> container, const Options& options)
      : container_(std::move(container)),
        quietConsole_(options.quietConsole),
        workers_(options.downloads.workers),
        urlData_(std::make_shared<LinuxUrlData>(options.downloads, options.certificateAuthorities)),
        bundles_(resourcesOf(options, container_)),
        application_(options.onOpenInMenu),
        locationServices_(locationServicesOf(options, container_)),
        geocoder_(geocoderOf(options, container_)) {}

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
  platform::Bundles& bundles() override { return bundles_; }
  platform::Images& images() override { return images_; }
  platform::Application& sharedApplication() override { return application_; }

  platform::LocationServices& locationServices() override {
    return locationServices_ ? *locationServices_ : Platform::locationServices();
  }

  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return geocoder_; }

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
  LinuxBundles bundles_;
  PngImages images_;
  DesktopApplication application_;
  const std::shared_ptr<platform::LocationServices> locationServices_;
  const std::shared_ptr<platform::Geocoder> geocoder_;
};

void check(const std::string& option, const std::optional<std::filesystem::path>& given) {
  if (!given) return;
  const std::string& path = given->native();
  if (!path.empty() && path.find('\0') == std::string::npos) return;
  throw std::invalid_argument("the option \"" + option + "\" must be a path, not empty and without a NUL");
}

}  // namespace

std::shared_ptr<platform::Platform> make(const Options& options) {
  check(options.downloads);
  check(options.location);
  check(options.geocoding);
  check("certificateAuthorities", options.certificateAuthorities);
  check("resources", options.resources);
  return std::make_shared<LinuxPlatform>(Container::locate(options.container, options.domain), options);
}

}  // namespace tavlo::linux_platform
