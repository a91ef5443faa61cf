// The two references about the position that the whole SDK shares. Both are empty at start.
#pragma once

#include "common/Slot.h"
#include "platform/Location.h"

namespace tavlo {

// The location manager of the latest fetch that was allowed. It goes on updating until another one takes its place.
[[nodiscard]] Slot<platform::LocationManager>& locationManager();

// Kept by the SDK's other components; no operation of TavloUtility reads or writes it.
[[nodiscard]] Slot<const platform::Location>& currentLocation();

}  // namespace tavlo
