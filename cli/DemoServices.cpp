#include "cli/DemoServices.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "cli/LocationSteps.h"
#include "cli/LocationWatch.h"
#include "cli/Requests.h"
#include "host/FixedPosition.h"
#include "host/SessionRecord.h"
#include "host/TableGeocoder.h"

namespace tavlo::cli {
namespace {

constexpr bool kHasImages = TAVLO_LINUX_IMAGES;

constexpr platform::Coordinate kBerlin{.latitude = 52.5186, .longitude = 13.4081};

std::vector<host::TableGeocoder::Place> places() {
  return {{.coordinate = {.latitude = 48.1374, .longitude = 11.5755}, .placemark = {.locality = "München"}},
          {.coordinate = {.latitude = 52.52, .longitude = 13.405},
           .placemark = {.ISOcountryCode = "DE",
                         .country = "Deutschland",
                         .postalCode = "10178",
                         .administrativeArea = "Berlin",
                         .locality = "Berlin",
                         .subLocality = "Mitte"}}};
}

}  // namespace

void showPosition(DemoReport& report, const Place& place) {
  report.title("A position and its address: tavlo locate --fixed 52.5186,13.4081 --geocoder table:FILE --why");
  linux_platform::Options outside;
  outside.locationServices = std::make_shared<host::FixedPosition>(kBerlin);
  outside.geocoder = std::make_shared<host::TableGeocoder>(places());
  const auto session = std::make_shared<host::SessionRecord>();
  TavloPackage::install(session);
  LocationWatch watch(place.makePlatform(outside));
  constexpr int kNothingElse = -1;  // there is nothing besides the answer to wait for
  static_cast<void>(watch.fetch({.until = std::chrono::steady_clock::now() + kPatience, .wakeUp = kNothingElse}));

  for (const auto& [step, what] : locationSteps(watch.report(), true)) {
    report.say(std::string(step).append(": ").append(what));
  }
  report.check("the position has six decimals",
               session->getLatitude() == "52.518600" && session->getLongitude() == "13.408100");
  report.check("the address is that of the nearest place",
               session->getUserAddress() == R"({"state":"Berlin","locality":"Mitte","pin":"10178","city":"Berlin",)"
                                            R"("country":"Deutschland"})");
  const std::string request = requestText(kAdRequestContract);
  report.check("the ad request carries them",
               request.find("&lat=52.518600&long=13.408100&address=%7B%22state%22%3A%22Berlin%22%2C%22locality%22%3A"
                            "%22Mitte%22%2C%22pin%22%3A%2210178%22%2C%22city%22%3A%22Berlin%22%2C%22country%22%3A"
                            "%22Deutschland%22%7D&sessionId=") != std::string::npos);
}

void showImages(DemoReport& report, const Place& place) {
  report.title("The player's images: tavlo image mute");
  if (!kHasImages) return report.say("This program was built without libpng, so no file is an image.");
  linux_platform::Options outside;
  outside.resources = place.resources();
  platform::install(place.makePlatform(outside));

  const auto mute = TavloUtility::getMuteImage();
  if (mute) report.draw(*mute);
  const auto volume = TavloUtility::getVolumeImage();
  report.check("the shipped images have 64 x 64 pixels",
               mute && volume && mute->width() == 64 && mute->height() == 64 && volume->width() == 64);
  report.check("the mute image is another one than the volume image",
               mute && volume && !std::ranges::equal(mute->pixels(), volume->pixels()));
}

}  // namespace tavlo::cli
