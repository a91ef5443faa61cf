// The first ad request of a process that has the rooms alone.
#include "bench/footprint/FirstRequest.h"

int main() { return tavlo::bench::firstRequest(); }
