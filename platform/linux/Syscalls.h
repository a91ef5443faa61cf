// Syscalls: the one seam between the Linux platform and the kernel.
//
// Values   each operation is the call of its name, unchanged: -1 (or nullopt) and errno on failure. Nothing
//          is retried here; FileOps.h handles interrupted calls and short writes for everyone.
// Threads  any thread, any time.
//
// A test derives from it to count, fail, shorten or stop at a call, or to turn the clock.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tavlo::linux_platform {

class Syscalls {
 public:
  Syscalls() = default;
  Syscalls(const Syscalls&) = delete;
  Syscalls& operator=(const Syscalls&) = delete;
  virtual ~Syscalls() = default;

  // The kernel itself.
  [[nodiscard]] static Syscalls& real();

  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int fd);
  virtual ssize_t read(int fd, void* buffer, std::size_t size);
  virtual ssize_t write(int fd, const void* bytes, std::size_t size);
  virtual int fsync(int fd);
  virtual int flock(int fd, int operation);
  virtual int fstat(int fd, struct stat* status);
  virtual int stat(const char* path, struct stat* status);
  virtual int mkdir(const char* path, mode_t mode);
  virtual int rename(const char* from, const char* to);
  virtual int unlink(const char* path);
  virtual int openat(int folder, const char* name, int flags);
  virtual int unlinkat(int folder, const char* name, int flags);

  // The names in a folder but "." and "..", in no order; in one that is open already, which stays so.
  virtual std::optional<std::vector<std::string>> folderNames(const char* path);
  virtual std::optional<std::vector<std::string>> openFolderNames(int folder);

  // The target of a symbolic link.
  virtual std::optional<std::string> readlink(const char* path);

  // A variable of the environment, and the home folder that the password database has for the user.
  virtual std::optional<std::string> environment(const char* name);
  virtual std::optional<std::string> passwordDatabaseHome();

  virtual std::chrono::steady_clock::time_point steadyNow();
  virtual std::chrono::system_clock::time_point systemNow();
  virtual void sleepFor(std::chrono::steady_clock::duration duration);
};

}  // namespace tavlo::linux_platform
