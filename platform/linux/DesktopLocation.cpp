#include "platform/linux/DesktopLocation.h"

#include <stdexcept>

#include "common/Utf8.h"

namespace tavlo::linux_platform {

void check(const LocationOptions& options) {
  if (options.desktopId.find('\0') != std::string::npos || !isUtf8(options.desktopId)) {
    throw std::invalid_argument("the option \"location.desktopId\" must be UTF-8 without a NUL");
  }
  const bool isInRange = options.authorization.count() >= 1 && options.authorization <= std::chrono::hours(24);
  if (!isInRange) throw std::invalid_argument("the option \"location.authorization\" must be from 1 to 86400000 ms");
}

}  // namespace tavlo::linux_platform
