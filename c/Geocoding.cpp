#include <memory>
#include <optional>

#include "c/Boundary.h"
#include "c/Services.h"

namespace tavlo::c {
namespace {

using Request = platform::GeocodeCompletionHandler;

platform::Placemark placemarkOf(const tavlo_placemark* given) {
  require(given, "a placemark");
  const tavlo_placemark placemark = sizedCopy(*given, "tavlo_placemark");
  return {
      .ISOcountryCode = textOf(placemark.ISOcountryCode, "the ISOcountryCode"),
      .country = textOf(placemark.country, "the country"),
      .postalCode = textOf(placemark.postalCode, "the postalCode"),
      .administrativeArea = textOf(placemark.administrativeArea, "the administrativeArea"),
      .locality = textOf(placemark.locality, "the locality"),
      .subLocality = textOf(placemark.subLocality, "the subLocality"),
      .thoroughfare = textOf(placemark.thoroughfare, "the thoroughfare"),
  };
}

std::optional<platform::Placemarks> placemarksOf(const tavlo_placemark* const* given, std::size_t count) {
  if (!given && count > 0) throw Misuse("there is a count of placemarks, but the array is a null pointer");
  if (!given) return std::nullopt;
  platform::Placemarks placemarks;
  placemarks.reserve(count);
  for (std::size_t i = 0; i < count; ++i) placemarks.push_back(placemarkOf(given[i]));
  return placemarks;
}

std::unique_ptr<Request> owned(tavlo_geocode_request* request) {
  require(request, "the request");
  return std::unique_ptr<Request>(reinterpret_cast<Request*>(request));
}

}  // namespace

void HostGeocoder::reverseGeocodeLocation(const std::optional<platform::Location>& location,
                                          platform::GeocodeCompletionHandler completionHandler) {
  if (!callbacks.has(&tavlo_geocoder::reverseGeocodeLocation)) {
    return completionHandler(std::nullopt, "no geocoder is available");
  }
  const platform::Coordinate known = location.value_or(platform::Location()).coordinate;
  const tavlo_coordinate position{.latitude = known.latitude, .longitude = known.longitude};
  callbacks.call(&tavlo_geocoder::reverseGeocodeLocation, location ? &position : nullptr,
                 reinterpret_cast<tavlo_geocode_request*>(new Request(std::move(completionHandler))));
}

}  // namespace tavlo::c

using tavlo::c::guarded;
using tavlo::c::owned;
using tavlo::c::placemarksOf;
using tavlo::c::Request;
using tavlo::c::viewOf;

tavlo_status tavlo_geocode_request_answer(tavlo_geocode_request* request, const tavlo_placemark* const* placemarks,
                                          size_t count) {
  return guarded(__func__, [=] {
    const auto answered = owned(request);
    (*answered)(placemarksOf(placemarks, count), std::nullopt);
  });
}
tavlo_status tavlo_geocode_request_fail(tavlo_geocode_request* request, tavlo_text error) {
  return guarded(__func__, [=] {
    const auto answered = owned(request);
    (*answered)(std::nullopt, std::string(viewOf(error, "the error")));
  });
}
void tavlo_geocode_request_drop(tavlo_geocode_request* request) { delete reinterpret_cast<Request*>(request); }
