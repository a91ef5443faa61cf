// The geocoder that the command line names, for a platform.
#pragma once

#include "cli/CommandLine.h"
#include "platform/linux/LinuxPlatform.h"

namespace tavlo::cli {

// Changes nothing when none is named. Throws UsageError for a service whose URL or contact is none, and Failure for a
// table that cannot be read.
void useGeocoder(const GeocoderChoice& choice, linux_platform::Options& options);

}  // namespace tavlo::cli
