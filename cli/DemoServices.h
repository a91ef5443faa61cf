// The demo's parts on the position and on the player's images.
#pragma once

#include "cli/DemoReport.h"
#include "cli/Place.h"

namespace tavlo::cli {

// A fixed position, its address from a table, and the ad request that carries both. Leaves a platform and a session of
// it installed.
void showPosition(DemoReport& report, const Place& place);

// The mute image, drawn where that shows. Leaves a platform of the place installed.
void showImages(DemoReport& report, const Place& place);

}  // namespace tavlo::cli
