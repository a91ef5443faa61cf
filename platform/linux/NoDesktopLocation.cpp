// Stands in for the position service where the library is built without it.
#include "platform/linux/DesktopLocation.h"

namespace tavlo::linux_platform {

std::shared_ptr<platform::LocationServices> makeDesktopLocation(const LocationOptions&) { return nullptr; }

}  // namespace tavlo::linux_platform
