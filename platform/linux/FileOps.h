// File work on top of the seam. Interrupted calls and short reads and writes are handled here, once.
//
// Values   paths are the kernel's: bytes without NUL.
// Absent   a failure is false, std::nullopt or an empty FileDescriptor, with errno as the call left it.
// Threads  any thread; one FileDescriptor belongs to one thread at a time.
#pragma once

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

// The result of a call that is made again as long as a signal interrupts it. Not for close(), which has
// closed even then, and not for fsync(), whose failure is final.
template <class Call>
auto uninterrupted(Call call) {
  for (;;) {
    const auto result = call();
    if (result != -1 || errno != EINTR) return result;
  }
}

// An open file, closed at the end. The result of close() is not looked at: what must be durable has been
// through fsync() before.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  FileDescriptor(Syscalls& syscalls, int fd) : syscalls_(&syscalls), fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  FileDescriptor(FileDescriptor&& other) noexcept : syscalls_(other.syscalls_), fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(syscalls_, other.syscalls_);
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~FileDescriptor();

  explicit operator bool() const { return fd_ >= 0; }
  [[nodiscard]] int get() const { return fd_; }

 private:
  Syscalls* syscalls_ = nullptr;
  int fd_ = -1;
};

// Opens with O_CLOEXEC, so that no program that the process starts inherits it.
[[nodiscard]] FileDescriptor openFile(Syscalls& syscalls, const std::filesystem::path& path, int flags,
                                      mode_t mode = 0);

[[nodiscard]] bool writeAll(Syscalls& syscalls, int fd, std::string_view bytes);

// The bytes up to the end of the file. Fails with EFBIG when there are more than `limit`.
[[nodiscard]] std::optional<std::string> readWhole(Syscalls& syscalls, int fd, std::size_t limit);

// The bytes of the regular file at the path, a link being followed. Fails without blocking when something else
// is there, and with EFBIG when there are more than `limit`.
[[nodiscard]] std::optional<std::string> readRegularFile(Syscalls& syscalls, const std::filesystem::path& path,
                                                         std::size_t limit);

// Takes an exclusive lock without waiting for it.
[[nodiscard]] bool tryLock(Syscalls& syscalls, int fd);

// How many names an open file has.
[[nodiscard]] std::optional<nlink_t> linkCount(Syscalls& syscalls, int fd);

// Whether the path still names this very file.
[[nodiscard]] bool isNamed(Syscalls& syscalls, int fd, const std::filesystem::path& path);

// Makes the names in a folder durable.
[[nodiscard]] bool syncFolder(Syscalls& syscalls, const std::filesystem::path& folder);

[[nodiscard]] bool renameFile(Syscalls& syscalls, const std::filesystem::path& from, const std::filesystem::path& to);
bool removeFile(Syscalls& syscalls, const std::filesystem::path& path);

}  // namespace tavlo::linux_platform
