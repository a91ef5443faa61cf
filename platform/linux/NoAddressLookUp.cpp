// Stands in for the look-up of addresses where the library is built without it.
#include "platform/linux/AddressLookUp.h"

namespace tavlo::linux_platform {

AddressAnswer lookUpAddress(const std::string&, const std::string&, const platform::Coordinate&, const FetchAnswer&) {
  return {.placemark = {}, .error = "this build of the component looks up no addresses: geocode-glib was missing"};
}

}  // namespace tavlo::linux_platform
