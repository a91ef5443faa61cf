// The services of the machine.
#include <array>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>

#include "cli/Doctor.h"
#include "cli/Errors.h"
#include "cli/Event.h"
#include "cli/GeocoderChoice.h"
#include "cli/LoopbackServer.h"
#include "platform/linux/DesktopPortal.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

constexpr bool kHasHttp = TAVLO_LINUX_HTTP;
constexpr bool kHasLocation = TAVLO_LINUX_LOCATION;
constexpr bool kHasPortal = TAVLO_LINUX_PORTAL;

// Where the systems keep the authorities that they trust, as one file.
constexpr auto kAuthorities = std::to_array<const char*>({
    "/etc/ssl/certs/ca-certificates.crt",
    "/etc/pki/tls/certs/ca-bundle.crt",
    "/etc/ssl/ca-bundle.pem",
    "/etc/ssl/cert.pem",
});

struct LookUp {
  Event answered;
  std::mutex mutex;
  bool hasPlacemarks = false;
  Text error;
};

}  // namespace

Finding examineHttp(const Patient& patient) {
  if (!kHasHttp)
    return note("this program was built without libcurl: no http or https URL has data", "build it with it");
  constexpr const char* kPage = "a page of this machine";
  try {
    const LoopbackServer server(LoopbackServer::Pages{{"/page", kPage}});
    if (patient.platform->urlData().dataWithContentsOfUrl(server.url("/page")) == kPage) {
      return ok("a page of this machine was fetched");
    }
    return broken("a page of this machine could not be fetched",
                  "check the firewall, and the proxy of the environment");
  } catch (const Failure& failure) {
    return broken(failure.what(), "check the limits of this process");
  }
}

Finding examineCertificates(const Patient& /*patient*/) {
  std::error_code ignored;
  for (const char* const file : kAuthorities) {
    const auto size = fs::file_size(file, ignored);
    if (!ignored && size > 0) return ok(std::string(file) + " is there");
  }
  return note("no certificates of authorities are known, so https URLs have no data", "install ca-certificates");
}

Finding examinePosition(const Patient& patient) {
  if (!kHasLocation) {
    return note("this program was built without libgeoclue", "build it with it, or use tavlo locate --fixed LAT,LON");
  }
  if (patient.platform->locationServices().locationServicesEnabled()) {
    return ok("the position service is on the system's bus; tavlo locate --wait asks it");
  }
  return note("there is no position service on the system's bus",
              "install and start geoclue-2.0, or use tavlo locate --fixed LAT,LON");
}

Finding examineGeocoder(const Patient& patient) {
  constexpr platform::Location kSomewhere{{.latitude = 52.52, .longitude = 13.405}};
  if (!patient.geocoder.service && !patient.geocoder.table) {
    return note("none is named, so addresses stay empty", "name one with --geocoder URL or table:FILE");
  }
  if (patient.geocoder.table) return ok(*patient.geocoder.table + " is a table of places");
  const auto lookUp = std::make_shared<LookUp>();
  patient.platform->makeGeocoder()->reverseGeocodeLocation(
      kSomewhere, [lookUp](const std::optional<platform::Placemarks>& placemarks, const Text& error) {
        const std::lock_guard lock(lookUp->mutex);
        lookUp->hasPlacemarks = placemarks && !placemarks->empty();
        lookUp->error = error;
        lookUp->answered.happen();
      });
  constexpr int kNothingElse = -1;
  const WaitEnd end =
      lookUp->answered.wait({.until = std::chrono::steady_clock::now() + kPatience, .wakeUp = kNothingElse});
  const std::string remedy = "check the URL and the network";
  if (end != WaitEnd::done) return broken(*patient.geocoder.service + " does not answer", remedy);
  const std::lock_guard lock(lookUp->mutex);
  if (lookUp->hasPlacemarks) return ok(*patient.geocoder.service + " answers");
  return broken(*patient.geocoder.service + " answers with " + lookUp->error.value_or("nothing"), remedy);
}

Finding examinePortal(const Patient& /*patient*/) {
  if (!kHasPortal)
    return note("this program was built without GIO", "build it with it; the log can be copied meanwhile");
  if (linux_platform::isPortalThere()) return ok("the portal is on the session's bus");
  return note("there is no desktop portal on the session's bus",
              "run it in a desktop session with xdg-desktop-portal; the log can be copied meanwhile");
}

}  // namespace tavlo::cli
