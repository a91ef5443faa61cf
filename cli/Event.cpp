#include "cli/Event.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

int pollTimeout(std::chrono::steady_clock::time_point until) {
  constexpr std::chrono::milliseconds kLongest{60000};  // then it is looked at anew
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), kLongest).count());
}

}  // namespace

Event::Event() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (descriptor_ < 0) throw Failure("cannot wait for answers: " + std::generic_category().message(errno));
}

Event::~Event() { ::close(descriptor_); }

void Event::happen() noexcept {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(descriptor_, &one, sizeof one);
}

WaitEnd Event::wait(const Patience& patience) {
  std::array<pollfd, 2> watched = {pollfd{.fd = descriptor_, .events = POLLIN, .revents = 0},
                                   pollfd{.fd = patience.wakeUp, .events = POLLIN, .revents = 0}};
  for (;;) {
    const int count = ::poll(watched.data(), watched.size(), pollTimeout(patience.until));
    if (count < 0) continue;  // a signal came
    if (watched[1].revents != 0) return WaitEnd::interrupted;
    std::uint64_t times = 0;
    if (::read(descriptor_, &times, sizeof times) > 0) return WaitEnd::done;
    if (std::chrono::steady_clock::now() >= patience.until) return WaitEnd::timedOut;
  }
}

}  // namespace tavlo::cli
