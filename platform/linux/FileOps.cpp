#include "platform/linux/FileOps.h"

#include <fcntl.h>
#include <sys/file.h>

#include <array>
#include <cstdint>

namespace tavlo::linux_platform {

FileDescriptor::~FileDescriptor() {
  if (fd_ < 0) return;
  const int error = errno;
  syscalls_->close(fd_);
  errno = error;
}

FileDescriptor openFile(Syscalls& syscalls, const std::filesystem::path& path, int flags, mode_t mode) {
  return {syscalls, uninterrupted([&] { return syscalls.open(path.c_str(), flags | O_CLOEXEC, mode); })};
}

bool writeAll(Syscalls& syscalls, int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = uninterrupted([&] { return syscalls.write(fd, bytes.data(), bytes.size()); });
    if (written == 0) errno = EIO;  // no progress: trying on could go on for ever
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::optional<std::string> readWhole(Syscalls& syscalls, int fd, std::size_t limit) {
  std::string bytes;
  std::array<char, 16384> block{};
  for (;;) {
    const ssize_t count = uninterrupted([&] { return syscalls.read(fd, block.data(), block.size()); });
    if (count < 0) return std::nullopt;
    if (count == 0) return bytes;
    bytes.append(block.data(), static_cast<std::size_t>(count));
    if (bytes.size() > limit) {
      errno = EFBIG;
      return std::nullopt;
    }
  }
}

std::optional<std::string> readRegularFile(Syscalls& syscalls, const std::filesystem::path& path, std::size_t limit) {
  const FileDescriptor file = openFile(syscalls, path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  struct stat status {};
  if (!file || uninterrupted([&] { return syscalls.fstat(file.get(), &status); }) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
  } else if (static_cast<std::uintmax_t>(status.st_size) > limit) {
    errno = EFBIG;
  } else {
    return readWhole(syscalls, file.get(), limit);
  }
  return std::nullopt;
}

bool tryLock(Syscalls& syscalls, int fd) {
  return uninterrupted([&] { return syscalls.flock(fd, LOCK_EX | LOCK_NB); }) == 0;
}

std::optional<nlink_t> linkCount(Syscalls& syscalls, int fd) {
  struct stat status {};
  if (uninterrupted([&] { return syscalls.fstat(fd, &status); }) != 0) return std::nullopt;
  return status.st_nlink;
}

bool isNamed(Syscalls& syscalls, int fd, const std::filesystem::path& path) {
  struct stat open {};
  struct stat named {};
  return uninterrupted([&] { return syscalls.fstat(fd, &open); }) == 0 &&
         uninterrupted([&] { return syscalls.stat(path.c_str(), &named); }) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

bool syncFolder(Syscalls& syscalls, const std::filesystem::path& folder) {
  const FileDescriptor opened = openFile(syscalls, folder, O_RDONLY | O_DIRECTORY);
  return opened && syscalls.fsync(opened.get()) == 0;
}

bool renameFile(Syscalls& syscalls, const std::filesystem::path& from, const std::filesystem::path& to) {
  return uninterrupted([&] { return syscalls.rename(from.c_str(), to.c_str()); }) == 0;
}

bool removeFile(Syscalls& syscalls, const std::filesystem::path& path) {
  return uninterrupted([&] { return syscalls.unlink(path.c_str()); }) == 0;
}

}  // namespace tavlo::linux_platform
