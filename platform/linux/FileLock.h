// FileLock: the advisory lock that keeps processes from writing one file at the same time.
//
// Values   the lock is on a file of its own, which is made when missing, with mode 0600, and never removed.
// Absent   no lock when the deadline has passed, or when the file cannot be opened or locked at all.
// Threads  each lock object excludes every other one, in this process and in others.
//
// The kernel has no lock with a time limit, so a taken one is asked for again every few milliseconds.
#pragma once

#include <chrono>
#include <filesystem>

#include "platform/linux/FileOps.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class FileLock {
 public:
  FileLock(Syscalls& syscalls, const std::filesystem::path& path, std::chrono::steady_clock::time_point deadline);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

  explicit operator bool() const { return static_cast<bool>(file_); }

 private:
  Syscalls& syscalls_;
  FileDescriptor file_;
};

}  // namespace tavlo::linux_platform
