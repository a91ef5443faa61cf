// The Linux platform, with services of the host's in place of its own.
#include "platform/Platform.h"

#include <filesystem>
#include <memory>
#include <utility>

#include "c/Boundary.h"
#include "c/Services.h"
#include "platform/linux/LinuxPlatform.h"

namespace tavlo::c {
namespace {

template <class Service, class Table>
std::shared_ptr<Service> serviceOver(const Table* table) {
  return table ? std::make_shared<Service>(*table) : nullptr;
}

// What the host brings; nullptr is the platform's own.
struct Services {
  explicit Services(const tavlo_platform& platform)
      : console(serviceOver<HostConsole>(platform.console)),
        urlData(serviceOver<HostUrlData>(platform.url_data)),
        files(serviceOver<HostFiles>(platform.file_manager)),
        defaults(serviceOver<HostDefaults>(platform.user_defaults)),
        queue(serviceOver<HostQueue>(platform.background_queue)),
        location(serviceOver<HostLocation>(platform.location_services)),
        geocoder(serviceOver<HostGeocoder>(platform.geocoder)),
        application(serviceOver<HostApplication>(platform.application)) {}

  void installed() const noexcept {
    const auto tell = [](const auto&... services) { ((services ? services->callbacks.installed() : void()), ...); };
    tell(console, urlData, files, defaults, queue, location, geocoder, application);
  }

  std::shared_ptr<HostConsole> console;
  std::shared_ptr<HostUrlData> urlData;
  std::shared_ptr<HostFiles> files;
  std::shared_ptr<HostDefaults> defaults;
  std::shared_ptr<HostQueue> queue;
  std::shared_ptr<HostLocation> location;
  std::shared_ptr<HostGeocoder> geocoder;
  std::shared_ptr<HostApplication> application;
};

class HostPlatform final : public platform::Platform {
 public:
  HostPlatform(Services services, std::shared_ptr<Platform> rest)
      : services_(std::move(services)), rest_(std::move(rest)) {}

  platform::UserDefaults& standardUserDefaults() override {
    return services_.defaults ? *services_.defaults : rest_->standardUserDefaults();
  }
  platform::Console& console() override { return services_.console ? *services_.console : rest_->console(); }
  platform::FileManager& fileManager() override { return services_.files ? *services_.files : rest_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override {
    return services_.queue ? *services_.queue : rest_->backgroundQueue();
  }
  platform::UrlData& urlData() override { return services_.urlData ? *services_.urlData : rest_->urlData(); }
  platform::LocationServices& locationServices() override { return rest_->locationServices(); }
  platform::Bundles& bundles() override { return rest_->bundles(); }
  platform::Images& images() override { return rest_->images(); }
  platform::Application& sharedApplication() override {
    return services_.application ? *services_.application : rest_->sharedApplication();
  }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return rest_->makeGeocoder(); }

 private:
  const Services services_;
  const std::shared_ptr<Platform> rest_;  // its workers, which use the services, end first
};

std::optional<std::filesystem::path> pathOf(tavlo_text text, const char* what) { return textOf(text, what); }

linux_platform::Options optionsOf(const tavlo_platform& platform, const Services& services) {
  linux_platform::Options options;
  options.container = pathOf(platform.container, "the container");
  options.domain = textOf(platform.domain, "the domain").value_or("");
  options.resources = pathOf(platform.resources, "the resources");
  options.certificateAuthorities = pathOf(platform.certificate_authorities, "the certificate_authorities");
  options.geocoding.url = textOf(platform.geocoding_url, "the geocoding_url").value_or("");
  options.quietConsole = platform.quiet_console;
  options.locationServices = services.location;
  options.geocoder = services.geocoder;
  return options;
}

std::shared_ptr<platform::Platform> platformOf(const tavlo_platform* given) {
  if (!given) return nullptr;
  const tavlo_platform platform = sizedCopy(*given, "tavlo_platform");
  Services services(platform);
  auto rest = linux_platform::make(optionsOf(platform, services));
  auto made = std::make_shared<HostPlatform>(services, std::move(rest));
  services.installed();
  return made;
}

}  // namespace
}  // namespace tavlo::c

using tavlo::c::guarded;
using tavlo::c::Misuse;
using tavlo::c::platformOf;

tavlo_status tavlo_platform_install(const tavlo_platform* platform) {
  return guarded(__func__, [=] { tavlo::platform::install(platformOf(platform)); });
}

tavlo_status tavlo_request_authorization(void (*answered)(void* user, int32_t status), void* user) {
  return guarded(__func__, [=] {
    if (!answered) throw Misuse("the callback must not be a null pointer");
    tavlo::platform::current()->locationServices().requestAuthorization(
        [=](int32_t status) { answered(user, status); });
  });
}
