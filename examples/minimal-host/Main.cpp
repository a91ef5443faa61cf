// The smallest host app: opens its container, says what it knows, counts a use and an event, and prints
// what the SDK would send.
#include <exception>
#include <iostream>

#include "TavloUtility.h"
#include "host/Host.h"
#include "platform/linux/LinuxPlatform.h"

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::cerr << "usage: minimal_host CONTAINER\n";
    return 2;
  }
  const std::filesystem::path container = argv[1];
  tavlo::platform::install(tavlo::linux_platform::make({.container = container, .domain = "org.example.player"}));
  tavlo::host::Host host(container);

  host.session().set(tavlo::PackageText::device_model, "Phone 3");
  host.counters().recordUse();
  host.tracker().addEvent("network-7", "impression");
  if (!tavlo::TavloUtility::getAppIdFromUserDefault()) tavlo::TavloUtility::setAppIdToUserDefault("app & co");

  std::cout << tavlo::TavloUtility::getAdditionalRequestingString() << '\n'
            << tavlo::TavloUtility::getInAppNotificationAdditionalRequest() << '\n'
            << tavlo::TavloUtility::getUserInfoRequestString() << '\n';
  return 0;
} catch (const std::exception& error) {
  std::cerr << "minimal_host: " << error.what() << '\n';
  return 1;
}
