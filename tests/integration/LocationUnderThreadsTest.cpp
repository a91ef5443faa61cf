// The geocoder answers on a thread of its own while others build requests: no address is ever torn.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "TavloUtility.h"
#include "host/SessionRecord.h"
#include "platform/Platform.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo {
namespace {

using platform::Location;

class FixedManager final : public platform::LocationManager {
 public:
  void setDistanceFilter(double) override {}
  void setDesiredAccuracy(double) override {}
  void startUpdatingLocation() override {}
  std::optional<Location> location() override { return Location{.coordinate = {.latitude = 28.5, .longitude = 77.25}}; }
};

// Keeps what it is asked until a thread comes for it.
class WaitingGeocoder final : public platform::Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<Location>&, platform::GeocodeCompletionHandler handler) override {
    const std::lock_guard lock(mutex_);
    handlers_.push_back(std::move(handler));
    asked_.notify_one();
  }

  platform::GeocodeCompletionHandler next() {
    std::unique_lock lock(mutex_);
    asked_.wait(lock, [this] { return !handlers_.empty(); });
    auto handler = std::move(handlers_.front());
    handlers_.pop_front();
    return handler;
  }

 private:
  std::mutex mutex_;
  std::condition_variable asked_;
  std::deque<platform::GeocodeCompletionHandler> handlers_;
};

class AnsweredPlatform final : public platform::Platform, private platform::LocationServices {
 public:
  platform::LocationServices& locationServices() override { return *this; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return geocoder; }

  const std::shared_ptr<WaitingGeocoder> geocoder = std::make_shared<WaitingGeocoder>();

 private:
  bool locationServicesEnabled() override { return true; }
  std::int32_t authorizationStatus() override { return 4; }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override { return std::make_shared<FixedManager>(); }
  void requestAuthorization(StatusHandler) override {}
  void requestLocation(LocationHandler) override {}
};

std::string city(int number) { return std::string(100, static_cast<char>('a' + number % 26)); }

// The value of the last pair but those behind it, as the request has it.
std::string addressIn(const std::string& request) {
  const std::size_t begin = request.find("&address=") + 9;
  return request.substr(begin, request.find('&', begin) - begin);
}

bool isWhole(const std::string& address) {
  const std::string around = "%7B%22city%22%3A%22";
  if (address.empty()) return true;
  if (address.size() != around.size() + 100 + 6 || !address.starts_with(around)) return false;
  return address == around + std::string(100, address[around.size()]) + "%22%7D";
}

TEST(LocationUnderThreads, AddressesAreNeverTorn) {
  constexpr int kRequestThreads = 8;
  const int fetches = test::figure(1'000, 10'000);
  const auto session = std::make_shared<host::SessionRecord>();
  const auto platform = std::make_shared<AnsweredPlatform>();
  TavloPackage::install(session);
  platform::install(platform);
  std::atomic<bool> done = false;

  std::thread answers([&] {
    for (int i = 0; i < fetches; ++i) {
      const auto handler = platform->geocoder->next();
      handler(platform::Placemarks{{.locality = city(i)}}, std::nullopt);
    }
    done = true;
  });
  TavloUtility::fetchCurrentLocation();
  test::onThreadsAtOnce(kRequestThreads + 1, [&](int thread) {
    if (thread == 0) {
      for (int i = 1; i < fetches; ++i) TavloUtility::fetchCurrentLocation();
      return;
    }
    do {
      const std::string address = addressIn(TavloUtility::getAdditionalRequestingString());
      ASSERT_TRUE(isWhole(address)) << address;
    } while (!done);
  });
  answers.join();

  const std::string last = std::string(100, static_cast<char>('a' + (fetches - 1) % 26));
  EXPECT_EQ(addressIn(TavloUtility::getAdditionalRequestingString()), "%7B%22city%22%3A%22" + last + "%22%7D");
  TavloPackage::install(nullptr);
  platform::install(nullptr);
  test::reached("T12",
                std::to_string(fetches) + " answers of a foreign thread while 8 threads build requests, none torn");
}

}  // namespace
}  // namespace tavlo
