// Ends while answers of a geocoder come, before main() is left, meanwhile and after.
//
// Usage: tavlo_exit_with_answers WAY    "foreign": on a thread that nobody waits for; "host": on the host's
#include <atomic>
#include <cstring>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "TavloUtility.h"
#include "host/AnswerThread.h"
#include "host/SessionRecord.h"
#include "platform/Platform.h"

namespace {

using tavlo::TavloUtility;
using namespace tavlo::platform;

bool onTheHosts = false;
std::atomic<bool> isAnswered = false;
std::latch answered(1);

// Every handler is called for ever, with a list, an empty list, which makes it throw, and an error.
void answer(const GeocodeCompletionHandler& handler, unsigned number) {
  try {
    if (number % 3 == 0) handler(Placemarks{{.locality = std::to_string(number)}}, std::nullopt);
    if (number % 3 == 1) handler(Placemarks(), std::nullopt);
    if (number % 3 == 2) handler(std::nullopt, "no route to host");
  } catch (const std::out_of_range&) {
    if (number == 100 && !isAnswered.exchange(true)) answered.count_down();  // an empty list, as each third from 1
  }
}

void answerOnTheHosts(const GeocodeCompletionHandler& handler, unsigned number) {
  answer(handler, number);
  tavlo::host::AnswerThread::post([handler, number] { answerOnTheHosts(handler, number + 1); });
}

class EndlessGeocoder final : public Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<Location>&, GeocodeCompletionHandler handler) override {
    if (onTheHosts) {
      tavlo::host::AnswerThread::post([handler] { answerOnTheHosts(handler, 0); });
      return;
    }
    std::thread([handler] {
      for (unsigned number = 0;; ++number) answer(handler, number);
    }).detach();
  }
};

class Manager final : public LocationManager {
  void setDistanceFilter(double) override {}
  void setDesiredAccuracy(double) override {}
  void startUpdatingLocation() override {}
  std::optional<Location> location() override { return Location{}; }
};

class AnswersPlatform final : public Platform, LocationServices {
 public:
  LocationServices& locationServices() override { return *this; }
  std::shared_ptr<Geocoder> makeGeocoder() override { return std::make_shared<EndlessGeocoder>(); }

 private:
  bool locationServicesEnabled() override { return true; }
  std::int32_t authorizationStatus() override { return kCLAuthorizationStatusAuthorizedAlways; }
  std::shared_ptr<LocationManager> makeLocationManager() override { return std::make_shared<Manager>(); }
  void requestAuthorization(StatusHandler) override {}
  void requestLocation(LocationHandler) override {}
};

// Constructed before anything of the component, and so destroyed after it.
struct RequestsWhileStaticsAreDestroyed {
  bool wanted = false;
  ~RequestsWhileStaticsAreDestroyed() {
    for (int i = 0; wanted && i < 100; ++i) static_cast<void>(TavloUtility::getAdditionalRequestingString());
    if (wanted) TavloUtility::fetchCurrentLocation();
  }
} last;

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  onTheHosts = std::strcmp(arguments[1], "host") == 0;
  last.wanted = true;
  tavlo::TavloPackage::install(std::make_shared<tavlo::host::SessionRecord>());
  install(std::make_shared<AnswersPlatform>());
  TavloUtility::fetchCurrentLocation();
  answered.wait();
  return 0;
}
