#include "TavloUtility.h"
#include "common/NotBuiltYet.h"

namespace tavlo {

void TavloUtility::fetchCurrentLocation() { notBuiltYet("fetchCurrentLocation"); }

}  // namespace tavlo
