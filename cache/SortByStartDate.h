// The order of cached records: by the value under "startdate", earliest first.
#pragma once

#include "common/Value.h"

namespace tavlo {

// The same records in that order, equal ones in the order in which they came.
[[nodiscard]] ValueList sortedByStartDate(const ValueList& records);

}  // namespace tavlo
