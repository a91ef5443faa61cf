// The demo's part on the media cache: images from a server of its own on this machine, lists, clearing.
#pragma once

#include "cli/DemoReport.h"
#include "cli/Place.h"

namespace tavlo::cli {

// Empties the cache of the place. Leaves a platform and a logger of it installed.
void showCache(DemoReport& report, const Place& place);

}  // namespace tavlo::cli
