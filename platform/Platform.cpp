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

class NoFileManager final : public FileManager {
 public:
  Text documentDirectory() override { return std::nullopt; }
  Existence fileExistsAtPathIsDirectory(const Text&) override { return Existence::missing; }
  FileResult removeItemAtPath(const Text&, Removal) override { return notAvailable(); }
  FileResult createDirectoryAtPath(const Text&) override { return notAvailable(); }
  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text&) override { return std::nullopt; }
  std::optional<std::string> dataWithContentsOfFile(const Text&) override { return std::nullopt; }
  FileResult writeToFileAtomically(std::string_view, const Text&, Durable) override { return notAvailable(); }

 private:
  static FileResult notAvailable() { return FileResult::failure("no file service is available"); }
};

class NoBackgroundQueue final : public BackgroundQueue {
 public:
  void dispatchAsync(std::function<void()>) override {}
};

class NoUrlData final : public UrlData {
 public:
  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override { return std::nullopt; }
};

class NoLocationManager final : public LocationManager {
 public:
  void setDistanceFilter(double) override {}
  void setDesiredAccuracy(double) override {}
  void startUpdatingLocation() override {}
  std::optional<Location> location() override { return std::nullopt; }
};

class NoLocationServices final : public LocationServices {
 public:
  bool locationServicesEnabled() override { return false; }
  std::int32_t authorizationStatus() override { return kCLAuthorizationStatusNotDetermined; }
  std::shared_ptr<LocationManager> makeLocationManager() override { return std::make_shared<NoLocationManager>(); }
  void requestAuthorization(StatusHandler answered) override { answered(authorizationStatus()); }
  void requestLocation(LocationHandler answered) override { answered(std::nullopt); }
};

class NoGeocoder final : public Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<Location>&, GeocodeCompletionHandler completionHandler) override {
    completionHandler(std::nullopt, "no geocoder is available");
  }
};

class NoBundles final : public Bundles {
 public:
  Text mainBundleResourcePath() override { return std::nullopt; }
  std::shared_ptr<Bundle> bundleWithPath(const Text&) override { return nullptr; }
};

class NoImages final : public Images {
 public:
  std::shared_ptr<const Image> imageWithContentsOfFile(const Text&) override { return nullptr; }
};

class NoDocumentInteractionController final : public DocumentInteractionController {
 public:
  bool presentOpenInMenuFromRect(const Rect&, const std::shared_ptr<View>&, bool) override { return false; }
};

class NoApplication final : public Application {
 public:
  bool canOpenURL(std::string_view) override { return false; }
  std::shared_ptr<DocumentInteractionController> interactionControllerWithURL(std::string_view) override {
    return std::make_shared<NoDocumentInteractionController>();
  }
};

// Constant-initialised, so that a platform library may set it before this file's own initialisation.
constinit std::atomic<Factory> defaultFactory{nullptr};

// What stands for a missing service is never destroyed, like the slots: threads and exit handlers may still
// ask for it while the process ends.
template <class Service>
Service& theOne() {
  static auto* const one = new Service;
  return *one;
}

}  // namespace

UserDefaults& Platform::standardUserDefaults() { return theOne<NoUserDefaults>(); }
Console& Platform::console() { return theOne<NoConsole>(); }
FileManager& Platform::fileManager() { return theOne<NoFileManager>(); }
BackgroundQueue& Platform::backgroundQueue() { return theOne<NoBackgroundQueue>(); }
UrlData& Platform::urlData() { return theOne<NoUrlData>(); }
LocationServices& Platform::locationServices() { return theOne<NoLocationServices>(); }
Bundles& Platform::bundles() { return theOne<NoBundles>(); }
Images& Platform::images() { return theOne<NoImages>(); }
Application& Platform::sharedApplication() { return theOne<NoApplication>(); }
std::shared_ptr<Geocoder> Platform::makeGeocoder() { return std::make_shared<NoGeocoder>(); }

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
