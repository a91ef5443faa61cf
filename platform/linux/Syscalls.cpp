#include "platform/linux/Syscalls.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <thread>

namespace tavlo::linux_platform {
namespace {

// Closes the folder; nullptr is one that could not be opened.
std::optional<std::vector<std::string>> namesIn(DIR* opened) {
  std::unique_ptr<DIR, int (*)(DIR*)> folder(opened, &::closedir);
  if (!folder) return std::nullopt;
  std::vector<std::string> names;
  for (;;) {
    errno = 0;
    const dirent* const entry = ::readdir(folder.get());
    if (!entry) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  const int error = errno;
  folder.reset();
  errno = error;
  return error == 0 ? std::optional(std::move(names)) : std::nullopt;
}

}  // namespace

Syscalls& Syscalls::real() {
  static auto* const real = new Syscalls;  // never destroyed: threads may still write while the process leaves main
  return *real;
}

int Syscalls::open(const char* path, int flags, mode_t mode) { return ::open(path, flags, mode); }
int Syscalls::close(int fd) { return ::close(fd); }
ssize_t Syscalls::read(int fd, void* buffer, std::size_t size) { return ::read(fd, buffer, size); }
ssize_t Syscalls::write(int fd, const void* bytes, std::size_t size) { return ::write(fd, bytes, size); }
int Syscalls::fsync(int fd) { return ::fsync(fd); }
int Syscalls::flock(int fd, int operation) { return ::flock(fd, operation); }
int Syscalls::fstat(int fd, struct stat* status) { return ::fstat(fd, status); }
int Syscalls::stat(const char* path, struct stat* status) { return ::stat(path, status); }
int Syscalls::mkdir(const char* path, mode_t mode) { return ::mkdir(path, mode); }
int Syscalls::rename(const char* from, const char* to) { return ::rename(from, to); }
int Syscalls::unlink(const char* path) { return ::unlink(path); }
int Syscalls::openat(int folder, const char* name, int flags) { return ::openat(folder, name, flags); }
int Syscalls::unlinkat(int folder, const char* name, int flags) { return ::unlinkat(folder, name, flags); }

std::optional<std::vector<std::string>> Syscalls::folderNames(const char* path) { return namesIn(::opendir(path)); }

std::optional<std::vector<std::string>> Syscalls::openFolderNames(int folder) {
  const int copy = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);  // with a position of its own
  if (copy < 0) return std::nullopt;
  DIR* const opened = ::fdopendir(copy);
  if (!opened) {
    const int error = errno;
    ::close(copy);
    errno = error;
  }
  return namesIn(opened);
}

std::optional<std::string> Syscalls::readlink(const char* path) {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = ::readlink(path, target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

std::optional<std::string> Syscalls::environment(const char* name) {
  const char* const value = std::getenv(name);
  return value ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> Syscalls::passwordDatabaseHome() {
  constexpr std::size_t kLargestEntry = std::size_t{1} << 20U;
  passwd entry{};
  passwd* found = nullptr;
  for (std::size_t size = 1024; size <= kLargestEntry; size *= 2) {
    std::string buffer(size, '\0');
    const int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
    if (error == 0) return found ? std::optional<std::string>(entry.pw_dir) : std::nullopt;
    if (error != ERANGE) break;
  }
  return std::nullopt;
}

std::chrono::steady_clock::time_point Syscalls::steadyNow() { return std::chrono::steady_clock::now(); }
std::chrono::system_clock::time_point Syscalls::systemNow() { return std::chrono::system_clock::now(); }
void Syscalls::sleepFor(std::chrono::steady_clock::duration duration) { std::this_thread::sleep_for(duration); }

}  // namespace tavlo::linux_platform
