#include "cli/GeocoderChoice.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "cli/Errors.h"
#include "cli/PlaceTable.h"

namespace tavlo::cli {

void useGeocoder(const GeocoderChoice& choice, linux_platform::Options& options) {
  options.geocoding.url = choice.service.value_or("");
  options.geocoding.maintainer = choice.contact.value_or("");
  try {
    linux_platform::check(options.geocoding);
  } catch (const std::invalid_argument& error) {
    throw UsageError(std::string("the geocoder cannot be used: ") + error.what());
  }
  if (!choice.table) return;
  PlaceTable table = readPlaceTable(*choice.table);
  options.geocoder = std::make_shared<host::TableGeocoder>(std::move(table.places), table.within);
}

}  // namespace tavlo::cli
