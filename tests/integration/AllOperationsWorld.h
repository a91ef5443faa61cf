// A host app for any number of threads: the real Linux platform and the real host over a temporary container, except
// that the network, the position, the geocoder and other apps are stand-ins, which answer at once or soon.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "TavloUtility.h"
#include "common/Slot.h"
#include "host/LogFileWriter.h"
#include "tests/integration/RealContainer.h"
#include "tests/integration/SealedBody.h"

namespace tavlo::test {

// A text that shows when it is torn: a letter all over, with one "&" that separates no pairs in the middle.
inline std::string whole(unsigned number) {
  const std::string half(20 + number % 12, static_cast<char>('a' + number % 26));
  return half + "&~" + half;
}
inline bool isWhole(std::string_view text) {
  if (text.size() < 42 || text.size() > 64 || text.front() < 'a' || text.front() > 'z') return false;
  const std::string half(text.size() / 2 - 1, text.front());
  return text == half + "&~" + half;
}

// Answers on a thread of its own: with a placemark, no list and an error in turn.
class AnsweringGeocoder final : public platform::Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<platform::Location>&,
                              platform::GeocodeCompletionHandler handler) override {
    const std::lock_guard lock(mutex_);
    handlers_.push_back(std::move(handler));
    asked_.notify_one();
  }

  // Gives the answers that are still due.
  void finish() {
    reverseGeocodeLocation({}, nullptr);
    thread_.join();
  }

 private:
  void run() {
    for (unsigned number = 0;; ++number) {
      const auto handler = next();
      if (!handler) return;
      switch (number % 3) {
        case 0: handler(platform::Placemarks{{.locality = whole(number)}}, std::nullopt); break;
        case 1: handler(std::nullopt, std::nullopt); break;
        default: handler(std::nullopt, "no route to host"); break;
      }
    }
  }
  platform::GeocodeCompletionHandler next() {
    std::unique_lock lock(mutex_);
    asked_.wait(lock, [this] { return !handlers_.empty(); });
    auto handler = std::move(handlers_.front());
    handlers_.pop_front();
    return handler;
  }

  std::mutex mutex_;
  std::condition_variable asked_;
  std::deque<platform::GeocodeCompletionHandler> handlers_;
  std::thread thread_{[this] { run(); }};
};

class StandInPlatform final : public platform::Platform,
                              platform::UrlData,
                              platform::LocationServices,
                              platform::Application {
 public:
  explicit StandInPlatform(std::shared_ptr<platform::Platform> real) : real_(std::move(real)) {}

  platform::UserDefaults& standardUserDefaults() override { return real_->standardUserDefaults(); }
  platform::Console& console() override { return real_->console(); }
  platform::FileManager& fileManager() override { return real_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override { return real_->backgroundQueue(); }
  platform::Bundles& bundles() override { return real_->bundles(); }
  platform::Images& images() override { return real_->images(); }
  platform::UrlData& urlData() override { return *this; }
  platform::LocationServices& locationServices() override { return *this; }
  platform::Application& sharedApplication() override { return *this; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return geocoder; }

  const std::shared_ptr<AnsweringGeocoder> geocoder = std::make_shared<AnsweringGeocoder>();

 private:
  class Manager final : public platform::LocationManager {
   public:
    explicit Manager(unsigned number) : degrees_(number % 80 + 0.5) {}
    void setDistanceFilter(double) override {}
    void setDesiredAccuracy(double) override {}
    void startUpdatingLocation() override {}
    std::optional<platform::Location> location() override {
      return platform::Location{.coordinate = {.latitude = degrees_, .longitude = degrees_}};
    }

   private:
    double degrees_;
  };
  class Controller final : public platform::DocumentInteractionController {
    bool presentOpenInMenuFromRect(const platform::Rect&, const std::shared_ptr<platform::View>&, bool) override {
      return true;
    }
  };

  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override {
    const unsigned number = ++bodies_;
    return sealed(std::size_t{1024} << (number % 7), static_cast<char>('a' + (number % 26)));
  }
  bool locationServicesEnabled() override { return true; }
  std::int32_t authorizationStatus() override { return platform::kCLAuthorizationStatusAuthorizedAlways; }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override {
    return std::make_shared<Manager>(++managers_);
  }
  void requestAuthorization(StatusHandler) override {}
  void requestLocation(LocationHandler) override {}
  bool canOpenURL(std::string_view) override { return false; }
  std::shared_ptr<platform::DocumentInteractionController> interactionControllerWithURL(std::string_view) override {
    return std::make_shared<Controller>();
  }

  std::shared_ptr<platform::Platform> real_;
  std::atomic<unsigned> bodies_ = 0;
  std::atomic<unsigned> managers_ = 0;
};

// The host's log file, whose lines are counted, those that end a download apart.
class CountedLog final : public Logger {
 public:
  explicit CountedLog(const std::filesystem::path& documents) : file_(documents) {}

  void writeLine(std::string_view message) override {
    file_.writeLine(message);
    const bool endsADownload = message.starts_with("getAndSaveBannerImage()");
    const std::lock_guard lock(mutex_);
    ++lines_;
    downloads_ += endsADownload ? 1 : 0;
    written_.notify_all();
  }
  void waitForDownloads(int count) {
    std::unique_lock lock(mutex_);
    written_.wait(lock, [&] { return downloads_ >= count; });
  }
  [[nodiscard]] int lines() {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  host::LogFileWriter file_;
  std::mutex mutex_;
  std::condition_variable written_;
  int lines_ = 0;
  int downloads_ = 0;
};

class AllOperationsWorld {
 public:
  AllOperationsWorld() {
    const std::filesystem::path documents = *platform::current()->fileManager().documentDirectory();
    std::filesystem::create_directories(documents / "TavloCache");
    std::filesystem::create_directories(documents.parent_path() / "Resources/TavloSDKResource.bundle");
    std::filesystem::copy(std::string(TAVLO_SOURCE_DIR) + "/resources/TavloSDKResource.bundle",
                          documents.parent_path() / "Resources/TavloSDKResource.bundle");
    cache = (documents / "TavloCache").string() + "/";
    log = std::make_shared<CountedLog>(documents);
    platform::install(platform_);
    Logger::install(log);
  }
  AllOperationsWorld(const AllOperationsWorld&) = delete;
  AllOperationsWorld& operator=(const AllOperationsWorld&) = delete;
  ~AllOperationsWorld() {
    processSlot<platform::Bundle>().store(nullptr);
    processSlot<const platform::Image>().store(nullptr);
    processSlot<platform::DocumentInteractionController>().store(nullptr);
  }

  [[nodiscard]] host::Host& host() { return container_.host(); }
  [[nodiscard]] AnsweringGeocoder& geocoder() { return *platform_->geocoder; }
  // What is on the disk, as a new process would find it.
  void restart() { container_.restart(); }

  std::string cache;  // with a solidus at its end
  std::shared_ptr<CountedLog> log;

 private:
  RealContainer container_;
  std::shared_ptr<StandInPlatform> platform_ = std::make_shared<StandInPlatform>(platform::current());
};

}  // namespace tavlo::test
