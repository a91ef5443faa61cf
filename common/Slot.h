// Slot: one process-wide reference that any thread may read and replace. SlotReader: for whoever reads one many
// times in a row.
//
// Values   the slot and every reader share ownership: a reader keeps what it got alive.
// Absent   an empty slot gives nullptr.
// Threads  any thread, any time; the last writer wins. The old object is destroyed outside the lock,
//          so a destructor may use the slot that it just left.
//
// A mutex and a shared_ptr, because libstdc++ 12's std::atomic<std::shared_ptr> is not clean under
// ThreadSanitizer.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

namespace tavlo {

template <class T>
class SlotReader;

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
    ++changes_;
    std::swap(object_, next);
    return next;
  }

  // Fills an empty slot and gives what it then holds: `candidate`, or what another thread put there.
  [[nodiscard]] std::shared_ptr<T> fill(std::shared_ptr<T> candidate) {
    const std::lock_guard lock(mutex_);
    if (!object_) {
      ++changes_;
      std::swap(object_, candidate);
    }
    return object_;
  }

 private:
  friend SlotReader<T>;

  mutable std::mutex mutex_;
  std::atomic<std::uint64_t> changes_ = 1;  // written only under the lock
  std::shared_ptr<T> object_;
};

// One thread's reader of a slot. Each read gives what load() would; while nothing is stored, all but the first cost
// one atomic load.
//
// Values   what was read stays alive until the next read or the reader's end.
template <class T>
class SlotReader {
 public:
  explicit SlotReader(const Slot<T>& slot) : slot_(slot) {}

  [[nodiscard]] T* read() {
    if (slot_.changes_.load() != changes_) readAgain();
    return object_.get();
  }

 private:
  void readAgain() {
    std::shared_ptr<T> object;
    {
      const std::lock_guard lock(slot_.mutex_);
      object = slot_.object_;
      changes_ = slot_.changes_;
    }
    object_.swap(object);  // the one before is destroyed when this reader is done with it
  }

  const Slot<T>& slot_;
  std::shared_ptr<T> object_;
  std::uint64_t changes_ = 0;  // when it was read; a slot begins with one
};

// The one slot for T of this process. It is never destroyed, so that a thread that is still running
// while the process leaves main finds it sound.
template <class T>
[[nodiscard]] Slot<T>& processSlot() {
  static auto* const slot = new Slot<T>;
  return *slot;
}

}  // namespace tavlo
