// The first ad request of a process with the whole Linux platform and a host, in the container that is its argument.
#include <exception>

#include "bench/footprint/FirstRequest.h"
#include "host/Host.h"
#include "platform/linux/LinuxPlatform.h"

int main(int count, char** arguments) try {
  if (count != 2) {
    std::fputs("usage: tavlo_start_full CONTAINER\n", stderr);
    return 2;
  }
  tavlo::platform::install(
      tavlo::linux_platform::make({.container = arguments[1], .domain = "tavlo-start", .quietConsole = true}));
  const tavlo::host::Host host(arguments[1]);
  return tavlo::bench::firstRequest();
} catch (const std::exception& error) {
  std::fprintf(stderr, "tavlo_start_full: %s\n", error.what());
  return 1;
}
