// SettingsFile: the settings as they lie on the disk, a binary property list with a dictionary at its root.
//
// Values   every entry that a property list can hold, under keys of any kind.
// Absent   see State.
// Threads  any thread; writers exclude each other by a lock of their own (FileLock.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "common/Value.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class SettingsFile {
 public:
  static constexpr std::size_t kLargest = std::size_t{64} << 20U;  // bytes

  // What tells one state of the file from another.
  struct Identity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;      // bytes
    std::int64_t modified = 0;  // nanoseconds since 1970
    std::int64_t changed = 0;   // the same
    friend bool operator==(const Identity&, const Identity&) = default;
  };

  enum class State {
    whole,
    missing,     // no entries
    damaged,     // no binary property list, or no dictionary at its root; no entries, `error` says what is wrong
    unreadable,  // no regular file, larger than kLargest, or an error of the system
  };

  struct Contents {
    State state = State::unreadable;
    ValueMap entries{};
    std::string error{};
    // Absent when a later state of the file might have the same one; see read().
    std::optional<Identity> identity{};
  };

  SettingsFile(Syscalls& syscalls, std::filesystem::path path) : syscalls_(syscalls), path_(std::move(path)) {}

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::filesystem::path lockPath() const { return path_.native() + ".lock"; }
  [[nodiscard]] std::filesystem::path damagedPath() const { return path_.native() + ".damaged"; }

  // One system call. Absent when there is no such file or it cannot be looked at.
  [[nodiscard]] std::optional<Identity> identity() const;

  // Never waits, whatever lies there under the name. The contents carry an identity only when the file had
  // last changed well before it was read: the file system's clock ticks every few milliseconds, and a file
  // that another process put there within one tick may have the same size, and the same inode if that was
  // free again.
  [[nodiscard]] Contents read() const;

  // Replaces the file durably; see AtomicFile.h. False as well when the entries do not fit in kLargest.
  [[nodiscard]] bool write(ValueMap entries, const std::filesystem::path& temporaryFolder) const;

  // Renames the file to damagedPath(), durably, replacing what was set aside before.
  [[nodiscard]] bool setAside() const;

 private:
  Syscalls& syscalls_;
  std::filesystem::path path_;
};

}  // namespace tavlo::linux_platform
