#include "platform/Geocoder.h"

namespace tavlo::platform {

std::string Placemark::description() const {
  std::string line;
  for (const Text* field : {&thoroughfare, &subLocality, &locality, &administrativeArea, &postalCode, &country}) {
    if (!*field) continue;
    if (!line.empty()) line += ", ";
    line += **field;
  }
  return line;
}

}  // namespace tavlo::platform
