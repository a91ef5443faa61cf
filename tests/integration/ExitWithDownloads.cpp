// Ends in one of several ways while banner images are being downloaded.
//
// Usage: tavlo_exit_with_downloads WAY CONTAINER URL    goes on to its end when a line comes on standard input
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "TavloUtility.h"
#include "platform/linux/LinuxPlatform.h"

namespace {

using tavlo::TavloUtility;

std::string container;
std::string url;

// With limits that no test waits for, so that a download that is not ended as the process ends holds it for ever.
std::shared_ptr<tavlo::platform::Platform> makePlatform() {
  constexpr std::chrono::hours kFar{24};
  return tavlo::linux_platform::make({.container = container,
                                      .domain = "player",
                                      .quietConsole = true,
                                      .downloads = {.connect = kFar, .stall = kFar, .total = kFar}});
}

void begin100Downloads() {
  for (int i = 0; i < 100; ++i) TavloUtility::cachedBannerImage(url);
}

void waitForALine() {
  while (std::getchar() != '\n') {
  }
}

int leaveMain() { return 0; }

int exitOnAWorker() {
  const auto other = makePlatform();  // its workers are not held
  other->backgroundQueue().dispatchAsync([] { std::exit(0); });
  for (;;) ::pause();
}

int leaveAReplacedPlatform() {
  tavlo::platform::install(makePlatform());
  begin100Downloads();
  return 0;
}

int dropThePlatformOnAWorker() {
  std::latch dropped(1);
  auto last = makePlatform();
  auto& queue = last->backgroundQueue();
  queue.dispatchAsync([last = std::move(last), &dropped]() mutable {
    last.reset();
    dropped.count_down();
  });
  dropped.wait();
  return 0;
}

int forkAChildThatExits() {
  const pid_t child = ::fork();
  if (child == 0) std::exit(0);
  int status = -1;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

// Constructed before any exit handler of the component is registered, and so destroyed after it has run.
struct DownloadsWhileStaticsAreDestroyed {
  bool wanted = false;
  ~DownloadsWhileStaticsAreDestroyed() {
    if (!wanted) return;
    begin100Downloads();
    tavlo::platform::install(makePlatform());
    begin100Downloads();
    static_cast<void>(makePlatform()->urlData().dataWithContentsOfUrl("file:///etc/hostname"));
  }
} last;

int goOnWhileStaticsAreDestroyed() {
  last.wanted = true;
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  const std::map<std::string, std::function<int()>> ways{{"leave", leaveMain},
                                                         {"exit-on-worker", exitOnAWorker},
                                                         {"replaced", leaveAReplacedPlatform},
                                                         {"dropped", dropThePlatformOnAWorker},
                                                         {"fork", forkAChildThatExits},
                                                         {"statics", goOnWhileStaticsAreDestroyed}};
  if (count != 4 || !ways.contains(arguments[1])) return 2;
  container = arguments[2];
  url = arguments[3];
  tavlo::platform::install(makePlatform());
  begin100Downloads();
  waitForALine();
  return ways.at(arguments[1])();
}
