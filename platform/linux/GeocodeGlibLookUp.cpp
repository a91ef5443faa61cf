#include <geocode-glib/geocode-glib.h>

#include <array>
#include <exception>
#include <memory>

#include "platform/linux/AddressLookUp.h"
#include "platform/linux/GLibCalls.h"
#include "platform/linux/NominatimAnswer.h"

namespace tavlo::linux_platform {
namespace {

using platform::Placemark;

// The library's service, with its transport replaced: its own has no limit of size or of time, keeps every answer on
// disk, and is not ended by the end of the process.
struct Service {
  GeocodeNominatim parent;
  const FetchAnswer* fetch;
};
struct ServiceClass {
  GeocodeNominatimClass parent;
};

gchar* query(GeocodeNominatim* service, const gchar* url, GCancellable* /*cancellable*/, GError** error) {
  try {
    const auto answer = preparedNominatimAnswer((*reinterpret_cast<Service*>(service)->fetch)(url));
    if (answer) return g_strdup(answer->c_str());
    g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_INVALID_DATA, "the geocoding service's answer is no JSON object");
  } catch (const std::exception& failure) {  // none may reach the library
    g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_FAILED, failure.what());
  }
  return nullptr;
}

GType serviceType() {
  static const GType type = g_type_register_static_simple(
      GEOCODE_TYPE_NOMINATIM, "TavloGeocodingService", sizeof(ServiceClass),
      [](gpointer own, gpointer /*data*/) { static_cast<ServiceClass*>(own)->parent.query = query; }, sizeof(Service),
      nullptr, static_cast<GTypeFlags>(0));
  return type;
}

struct Row {
  Text Placemark::*field;
  const char* (*read)(GeocodePlace* place);
};

constexpr auto kRows = std::to_array<Row>({
    {&Placemark::thoroughfare, geocode_place_get_street},
    {&Placemark::subLocality, geocode_place_get_area},
    {&Placemark::locality, geocode_place_get_town},
    {&Placemark::administrativeArea, geocode_place_get_state},
    {&Placemark::postalCode, geocode_place_get_postal_code},
    {&Placemark::country, geocode_place_get_country},
    {&Placemark::ISOcountryCode, geocode_place_get_country_code},
});

Placemark placemarkOf(GeocodePlace* place) {
  Placemark placemark;
  for (const auto& [field, read] : kRows) {
    const char* const text = read(place);
    if (text != nullptr && *text != '\0') placemark.*field = text;
  }
  return placemark;
}

}  // namespace

AddressAnswer lookUpAddress(const std::string& baseUrl, const std::string& maintainer,
                            const platform::Coordinate& place, const FetchAnswer& fetch) {
  const Ref<GObject> service(static_cast<GObject*>(g_object_new(
      serviceType(), "base-url", baseUrl.c_str(), "maintainer-email-address", maintainer.c_str(), nullptr)));
  reinterpret_cast<Service*>(service.get())->fetch = &fetch;
  const Ref<GeocodeLocation> location(
      geocode_location_new(place.latitude, place.longitude, GEOCODE_LOCATION_ACCURACY_UNKNOWN));
  const Ref<GeocodeReverse> question(geocode_reverse_new_for_location(location.get()));
  geocode_reverse_set_backend(question.get(), reinterpret_cast<GeocodeBackend*>(service.get()));

  Failure failure;
  const Ref<GeocodePlace> found(geocode_reverse_resolve(question.get(), failure.out()));
  if (!found) return {.placemark = {}, .error = failure.message()};
  AddressAnswer answer{.placemark = placemarkOf(found.get()), .error = {}};
  if (answer.placemark == Placemark()) answer.error = "the geocoding service knows no address there";
  return answer;
}

}  // namespace tavlo::linux_platform
