#include "platform/linux/LocationState.h"

#include <cmath>
#include <memory>
#include <new>
#include <utility>

#include "platform/linux/HttpTransfer.h"
#include "platform/linux/WorkerQueue.h"

namespace tavlo::linux_platform {
namespace {

using platform::Location;

// Never destroyed: a client may have news while the process ends. What HTTP cleans up when the process exits must
// outlive the workers of all queues, so it is set up before the first of them.
WorkerQueue& answers() {
  static auto* const queue = [] {
    prepareHttp();
    return new WorkerQueue(1);
  }();
  return *queue;
}

template <class Handler, class Answer>
void tellHere(const Handler& handler, const Answer& answer) {
  try {
    handler(answer);
  } catch (...) {  // it ends the handler's run; there is no one to tell
  }
}

// Nothing may keep a handler from its answer, not even that there is no memory to pass it on with.
template <class Handler, class Answer>
void tell(Handler handler, const Answer& answer) {
  if (!handler) return;
  std::shared_ptr<Handler> shared;
  try {
    shared = std::make_shared<Handler>(std::move(handler));
    answers().dispatchAsync([shared, answer] { (*shared)(answer); });
  } catch (const std::bad_alloc&) {
    tellHere(shared ? *shared : handler, answer);
  }
}

template <class Handler, class Answer>
void tellAll(std::vector<Handler> handlers, const Answer& answer) {
  for (Handler& each : handlers) tell(std::move(each), answer);
}

std::int32_t statusWith(bool accuracy) {
  return accuracy ? platform::kCLAuthorizationStatusAuthorizedAlways : platform::kCLAuthorizationStatusRestricted;
}

bool isOnEarth(const platform::Coordinate& place) {
  return std::abs(place.latitude) <= 90 && std::abs(place.longitude) <= 180;  // false for what is no number
}

}  // namespace

std::int32_t LocationState::authorizationStatus() const {
  const std::lock_guard lock(mutex_);
  return status_;
}

std::optional<Location> LocationState::location() const {
  const std::lock_guard lock(mutex_);
  return location_;
}

bool LocationState::isAllowed() const {
  const std::lock_guard lock(mutex_);
  return life_ == Life::allowed;
}

bool LocationState::requestAuthorization(StatusHandler answered) {
  std::unique_lock lock(mutex_);
  if (life_ == Life::allowed) {
    const std::int32_t status = status_;
    lock.unlock();
    tell(std::move(answered), status);
    return false;
  }
  awaitStatus_.push_back(std::move(answered));
  if (life_ == Life::begins) return false;
  life_ = Life::begins;
  fresh_ = false;
  return true;
}

void LocationState::requestLocation(LocationHandler answered) {
  std::unique_lock lock(mutex_);
  if (life_ != Life::none && !fresh_) {
    awaitLocation_.push_back(std::move(answered));
    return;
  }
  const std::optional<Location> answer = life_ == Life::none ? std::nullopt : location_;
  lock.unlock();
  tell(std::move(answered), answer);
}

void LocationState::allowed(bool hasAccuracy) {
  std::unique_lock lock(mutex_);
  life_ = Life::allowed;
  const std::int32_t status = status_ = statusWith(hasAccuracy);
  auto waiting = std::exchange(awaitStatus_, {});
  lock.unlock();
  tellAll(std::move(waiting), status);
}

void LocationState::hasAccuracy(bool any) {
  const std::lock_guard lock(mutex_);
  if (life_ == Life::allowed) status_ = statusWith(any);
}

void LocationState::moved(const Location& location) {
  if (!isOnEarth(location.coordinate)) return;
  std::unique_lock lock(mutex_);
  if (life_ == Life::none) return;
  location_ = location;
  fresh_ = true;
  auto waiting = std::exchange(awaitLocation_, {});
  lock.unlock();
  tellAll(std::move(waiting), std::optional(location));
}

void LocationState::ended(std::int32_t status) {
  std::unique_lock lock(mutex_);
  life_ = Life::none;
  status_ = status;
  auto awaitStatus = std::exchange(awaitStatus_, {});
  auto awaitLocation = std::exchange(awaitLocation_, {});
  lock.unlock();
  tellAll(std::move(awaitStatus), status);
  tellAll(std::move(awaitLocation), std::optional<Location>());
}

}  // namespace tavlo::linux_platform
