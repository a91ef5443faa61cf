// Slot: one process-wide reference that any thread may read and replace.
//
// Values   the slot and every reader share ownership: a reader keeps what it got alive.
// Absent   an empty slot gives nullptr.
// Threads  any thread, any time; the last writer wins. The old object is destroyed outside the lock,
//          so a destructor may use the slot that it just left.
//
// A mutex and a shared_ptr, because libstdc++ 12's std::atomic<std::shared_ptr> is not clean under
// ThreadSanitizer.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace tavlo {

template <class T>
class Slot {
 public:
  Slot() = default;
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;
  ~Slot() = default;

  [[nodiscard]] std::shared_ptr<T> load() const {
    const std::lock_guard lock(mutex_);
    return object_;
  }

  void store(std::shared_ptr<T> next) { static_cast<void>(exchange(std::move(next))); }

  [[nodiscard]] std::shared_ptr<T> exchange(std::shared_ptr<T> next) {
    const std::lock_guard lock(mutex_);
    std::swap(object_, next);
    return next;
  }

  // Fills an empty slot and gives what it then holds: `candidate`, or what another thread put there.
  [[nodiscard]] std::shared_ptr<T> fill(std::shared_ptr<T> candidate) {
    const std::lock_guard lock(mutex_);
    if (!object_) std::swap(object_, candidate);
    return object_;
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<T> object_;
};

// The one slot for T of this process. It is never destroyed, so that a thread that is still running
// while the process leaves main finds it sound.
template <class T>
[[nodiscard]] Slot<T>& processSlot() {
  static auto* const slot = new Slot<T>;
  return *slot;
}

}  // namespace tavlo
