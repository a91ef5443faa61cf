// Ends in one of several ways while the position and an address are being asked for.
//
// Usage: tavlo_exit_with_services WAY CONTAINER URL    prints "answered" where a handler has run, and goes on to its
//                                                      end when a line comes on standard input
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
#include <map>
#include <memory>
#include <string>

#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"

namespace {

using tavlo::platform::Location;
using tavlo::platform::Platform;

std::shared_ptr<Platform> desktop;

constexpr std::chrono::hours kFar{24};  // no test waits for it, so that what is not ended as the process ends holds it

void ask() {
  desktop->locationServices().requestAuthorization([](std::int32_t) { std::puts("answered"); });
  desktop->locationServices().requestLocation([](const auto&) { std::puts("answered"); });
  for (int latitude = 0; latitude < 5; ++latitude) {
    const Location place{.coordinate = {.latitude = static_cast<double>(latitude), .longitude = 0}};
    desktop->makeGeocoder()->reverseGeocodeLocation(place, [](const auto&, const auto&) { std::puts("answered"); });
  }
}

int leaveMain() { return 0; }

int dropThePlatform() {
  desktop = nullptr;
  return 0;
}

// On a thread that the process has to wait for.
int exitOnAWorker() {
  const auto other = tavlo::linux_platform::make({.domain = "other"});
  other->backgroundQueue().dispatchAsync([] { std::exit(0); });
  for (;;) ::pause();
}

int forkAChildThatAsksAndExits() {
  const pid_t child = ::fork();
  if (child == 0) {
    static_cast<void>(desktop->locationServices().locationServicesEnabled());
    ask();
    std::exit(0);
  }
  int status = -1;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

// Constructed before any exit handler of the component is registered, and so destroyed after it has run.
struct QuestionsWhileStaticsAreDestroyed {
  bool wanted = false;
  ~QuestionsWhileStaticsAreDestroyed() {
    if (!wanted) return;
    static_cast<void>(desktop->locationServices().locationServicesEnabled());
    static_cast<void>(desktop->locationServices().makeLocationManager()->location());
    ask();
  }
} last;

int askWhileStaticsAreDestroyed() {
  last.wanted = true;
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  const std::map<std::string, std::function<int()>> ways{{"leave", leaveMain},
                                                         {"drop", dropThePlatform},
                                                         {"exit-on-worker", exitOnAWorker},
                                                         {"fork", forkAChildThatAsksAndExits},
                                                         {"statics", askWhileStaticsAreDestroyed}};
  if (count != 4 || !ways.contains(arguments[1])) return 2;
  tavlo::linux_platform::Options options{.container = arguments[2], .domain = "player", .quietConsole = true};
  options.location.authorization = kFar;
  options.geocoding.url = arguments[3];
  options.geocoding.timeLimit = kFar;
  desktop = tavlo::linux_platform::make(options);
  ask();
  while (std::getchar() != '\n') {
  }
  return ways.at(arguments[1])();
}
