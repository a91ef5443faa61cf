// The real system calls, with a hook before each one that records, fails, shortens or stops it, and a clock
// that can be turned.
#pragma once

#include <fcntl.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/Syscalls.h"

namespace tavlo::test {

class FaultySyscalls final : public linux_platform::Syscalls {
 public:
  // Gets each call, as "write tmp/tavlo-#.tmp", before it is made. The answer is the errno to fail with, or 0.
  using Hook = std::function<int(const std::string& call)>;

  // Paths are recorded relative to the root, which is ".", and a temporary's name without its numbers.
  explicit FaultySyscalls(std::string root = "", Hook hook = nullptr)
      : root_(std::move(root) + '/'), hook_(std::move(hook)) {}

  void setHook(Hook hook) { hook_ = std::move(hook); }
  // The first write of more than this many bytes writes only this many, once.
  void shortenOnce(std::size_t size) { shortened_ = size; }
  // Reads give at most this many bytes each.
  void shortenReads(std::size_t size) { longestRead_ = size; }
  void turnClock(std::chrono::nanoseconds by) { turned_ += by.count(); }

  [[nodiscard]] std::vector<std::string> calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  [[nodiscard]] std::size_t count(const std::string& start) const {
    const auto all = calls();
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](const std::string& call) { return call.starts_with(start); }));
  }
  void forget() {
    const std::lock_guard lock(mutex_);
    calls_.clear();
  }

  int open(const char* path, int flags, mode_t mode) override {
    if (!allowed("open", label(path))) return -1;
    const int fd = Syscalls::open(path, flags, mode);
    const std::lock_guard lock(mutex_);
    if (fd >= 0) open_[fd] = label(path);
    return fd;
  }
  int close(int fd) override {
    const bool fine = allowed("close", label(fd));
    const int error = errno;
    const int result = Syscalls::close(fd);  // the kernel closes even when it reports an error
    if (!fine) errno = error;
    return fine ? result : -1;
  }
  ssize_t read(int fd, void* buffer, std::size_t size) override {
    return allowed("read", label(fd)) ? Syscalls::read(fd, buffer, std::min(size, longestRead_)) : -1;
  }
  ssize_t write(int fd, const void* bytes, std::size_t size) override {
    if (!allowed("write", label(fd))) return -1;
    if (shortened_ && size > *shortened_) size = *std::exchange(shortened_, std::nullopt);
    return size == 0 ? 0 : Syscalls::write(fd, bytes, size);
  }
  // Recorded, but not made: no test here can cut the power, and the rest of the machine need not wait.
  int fsync(int fd) override { return allowed("fsync", label(fd)) ? 0 : -1; }
  int flock(int fd, int operation) override {
    return allowed("flock", label(fd)) ? Syscalls::flock(fd, operation) : -1;
  }
  int fstat(int fd, struct stat* status) override {
    return allowed("fstat", label(fd)) ? Syscalls::fstat(fd, status) : -1;
  }
  int stat(const char* path, struct stat* status) override {
    return allowed("stat", label(path)) ? Syscalls::stat(path, status) : -1;
  }
  int mkdir(const char* path, mode_t mode) override {
    return allowed("mkdir", label(path)) ? Syscalls::mkdir(path, mode) : -1;
  }
  int rename(const char* from, const char* to) override {
    return allowed("rename", label(from) + " " + label(to)) ? Syscalls::rename(from, to) : -1;
  }
  int unlink(const char* path) override { return allowed("unlink", label(path)) ? Syscalls::unlink(path) : -1; }
  int openat(int folder, const char* name, int flags) override {
    if (!allowed("openat", label(folder, name))) return -1;
    const int fd = Syscalls::openat(folder, name, flags);
    const std::string opened = label(folder, name);
    const std::lock_guard lock(mutex_);
    if (fd >= 0) open_[fd] = opened;
    return fd;
  }
  int unlinkat(int folder, const char* name, int flags) override {
    const char* const call = (flags & AT_REMOVEDIR) != 0 ? "rmdirat" : "unlinkat";
    return allowed(call, label(folder, name)) ? Syscalls::unlinkat(folder, name, flags) : -1;
  }
  std::optional<std::vector<std::string>> folderNames(const char* path) override {
    if (!allowed("folderNames", label(path))) return std::nullopt;
    return Syscalls::folderNames(path);
  }
  std::optional<std::vector<std::string>> openFolderNames(int folder) override {
    if (!allowed("openFolderNames", label(folder))) return std::nullopt;
    return Syscalls::openFolderNames(folder);
  }

  std::chrono::steady_clock::time_point steadyNow() override { return Syscalls::steadyNow() + turned(); }
  std::chrono::system_clock::time_point systemNow() override { return Syscalls::systemNow() + turned(); }
  // Turns the clock instead of waiting.
  void sleepFor(std::chrono::steady_clock::duration duration) override {
    if (allowed("sleep", "")) turnClock(duration);
  }

 private:
  [[nodiscard]] std::chrono::nanoseconds turned() const { return std::chrono::nanoseconds(turned_); }

  bool allowed(const std::string& name, const std::string& argument) {
    const std::string call = argument.empty() ? name : name + " " + argument;
    {
      const std::lock_guard lock(mutex_);
      calls_.push_back(call);
    }
    const int error = hook_ ? hook_(call) : 0;
    if (error != 0) errno = error;
    return error == 0;
  }

  [[nodiscard]] std::string label(const std::string& path) const {
    static const std::regex kNumbers("tavlo-[0-9]+-[0-9]+\\.tmp");
    if (path + '/' == root_) return ".";
    const std::string below = path.starts_with(root_) ? path.substr(root_.size()) : path;
    return below.starts_with("tmp/") ? std::regex_replace(below, kNumbers, "tavlo-#.tmp") : below;
  }
  [[nodiscard]] std::string label(int fd) const {
    const std::lock_guard lock(mutex_);
    const auto opened = open_.find(fd);
    return opened == open_.end() ? "?" : opened->second;
  }
  // A name in an open folder; ".." of it is the folder above.
  [[nodiscard]] std::string label(int folder, const std::string& name) const {
    if (folder == AT_FDCWD) return label(name);
    const std::string above = label(folder);
    if (name == "..") return above.substr(0, above.rfind('/'));
    return above + '/' + name;
  }

  const std::string root_;
  Hook hook_;
  std::optional<std::size_t> shortened_;
  std::size_t longestRead_ = SIZE_MAX;
  std::atomic<std::chrono::nanoseconds::rep> turned_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> calls_;
  std::map<int, std::string> open_;
};

// A hook that fails the n-th call, counted from 1, that starts so.
inline FaultySyscalls::Hook failing(std::string start, int error, int n = 1) {
  return [start = std::move(start), error, left = n](const std::string& call) mutable {
    return call.starts_with(start) && --left == 0 ? error : 0;
  };
}

}  // namespace tavlo::test
