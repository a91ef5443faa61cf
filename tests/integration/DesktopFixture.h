// The Linux platform's own position and geocoder, with the console and the session package on one awaited record:
//
//   console:<line>
//   setLatitude:28.613900 AndLogitude:77.209000     to the session package
//   setUserAddress:
#pragma once

#include <condition_variable>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "location/LocationSlots.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class AwaitedRecord {
 public:
  void add(std::string line) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(std::move(line));
    grows_.notify_all();
  }

  // The lines since the last time, when there are as many.
  [[nodiscard]] std::vector<std::string> take(std::size_t count) {
    std::unique_lock lock(mutex_);
    grows_.wait(lock, [&] { return lines_.size() >= count; });
    return std::exchange(lines_, {});
  }

 private:
  std::mutex mutex_;
  std::condition_variable grows_;
  std::vector<std::string> lines_;
};

class DesktopPlatform final : public platform::Platform, private platform::Console {
 public:
  DesktopPlatform(const linux_platform::Options& options, AwaitedRecord& record)
      : real_(linux_platform::make(options)), record_(record) {}

  platform::Console& console() override { return *this; }
  platform::LocationServices& locationServices() override { return real_->locationServices(); }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return real_->makeGeocoder(); }

 private:
  void log(std::string_view message) override { record_.add("console:" + std::string(message)); }

  const std::shared_ptr<platform::Platform> real_;
  AwaitedRecord& record_;
};

class RecordedPackage final : public RecordingPackage {
 public:
  explicit RecordedPackage(AwaitedRecord& record) : record_(record) {}

  void setLatitudeAndLogitude(const Text& latitude, const Text& longitude) override {
    record_.add("setLatitude:" + latitude.value_or("(null)") + " AndLogitude:" + longitude.value_or("(null)"));
  }
  void setUserAddress(const Text& address) override { record_.add("setUserAddress:" + address.value_or("(null)")); }

 private:
  AwaitedRecord& record_;
};

class Desktop {
 public:
  explicit Desktop(linux_platform::Options options = {}) {
    options.container = folder_.path();
    if (options.domain.empty()) options.domain = "org.example.player";
    platform_ = std::make_shared<DesktopPlatform>(options, record_);
    platform::install(platform_);
  }
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;
  ~Desktop() {
    platform::install(nullptr);
    locationManager().store(nullptr);
  }

  [[nodiscard]] platform::LocationServices& services() { return platform_->locationServices(); }
  [[nodiscard]] AwaitedRecord& record() { return record_; }
  [[nodiscard]] std::shared_ptr<platform::Geocoder> geocoder() { return platform_->makeGeocoder(); }

  // The answers, which are awaited.
  [[nodiscard]] std::int32_t authorize() {
    std::promise<std::int32_t> answer;
    services().requestAuthorization([&](std::int32_t status) { answer.set_value(status); });
    return answer.get_future().get();
  }
  [[nodiscard]] std::optional<platform::Location> fix() {
    std::promise<std::optional<platform::Location>> answer;
    services().requestLocation([&](const std::optional<platform::Location>& fix) { answer.set_value(fix); });
    return answer.get_future().get();
  }

 private:
  TemporaryFolder folder_;
  AwaitedRecord record_;
  std::shared_ptr<DesktopPlatform> platform_;
  Installed<TavloPackage, RecordedPackage> package_{record_};
};

}  // namespace tavlo::test
