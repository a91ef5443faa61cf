// The platform's own geocoder: a Nominatim-compatible service, asked over HTTP.
//
// Values   see GeocodingOptions, and AddressLookUp.h for what the answer's fields become. An answer has one placemark.
//          The service is asked by GET with the user agent "TavloUtility (DOMAIN)" and the maintainer's address in
//          the URL. Positions go over the network to that service and to no other, and nothing is kept on disk; the
//          newest answer is kept in memory, and is the answer for the same position again.
// Absent   an absent location, or one with a latitude beyond 90 or a longitude beyond 180 degrees or with one that is
//          no number, is answered with an error and asks nobody. So is every location when no service is configured,
//          and when the library is built without HTTP or without the reader of answers. Errors too: no answer, a
//          status of 400 or above, an answer that breaks off, is not JSON, is above 1 MiB or nested deeper than 32,
//          one that tells an error, and one without any field of an address.
// Threads  any thread, any time. In the whole process one request is asked after the other, the oldest first, and at
//          most one a second, whatever the number of platforms. At most eight wait: when another comes, the oldest of
//          them asks nobody and is answered with an error. Handlers run one after another, in the order of the
//          requests, on one thread for all platforms of the process; one that takes long holds up the others. The
//          process's exit ends the request under way and drops all that have not been answered.
// Throws   std::bad_alloc; check() throws std::invalid_argument, with a message that names the option.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/Geocoder.h"
#include "platform/linux/RequestPace.h"

namespace tavlo::linux_platform {

struct GeocodingOptions {
  std::string url{};                            // the service's base URL, http or https; empty: no service
  std::string maintainer{};                     // an e-mail address that the service may write to
  std::chrono::milliseconds timeLimit{10'000};  // for one answer, 1 ms to a day
};

void check(const GeocodingOptions& options);

// Requests go on when the geocoder is gone. The domain is made printable ASCII.
[[nodiscard]] std::shared_ptr<platform::Geocoder> makeLinuxGeocoder(
    const GeocodingOptions& options, const std::string& domain,
    const std::optional<std::filesystem::path>& certificateAuthorities);

// For tests: the clock of all geocoders of the process. Must come before the first of them is used.
void setGeocodingClock(std::unique_ptr<RequestPace::Clock> clock);

}  // namespace tavlo::linux_platform
