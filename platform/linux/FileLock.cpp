#include "platform/linux/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>

namespace tavlo::linux_platform {

FileLock::FileLock(Syscalls& syscalls, const std::filesystem::path& path,
                   std::chrono::steady_clock::time_point deadline)
    : syscalls_(syscalls) {
  using std::chrono::steady_clock;
  constexpr steady_clock::duration kLongestPause = std::chrono::milliseconds(4);
  for (steady_clock::duration pause = std::chrono::microseconds(250);; pause = std::min(2 * pause, kLongestPause)) {
    FileDescriptor file = openFile(syscalls, path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (!file) return;
    if (tryLock(syscalls, file.get())) {
      const auto links = linkCount(syscalls, file.get());
      if (links != nlink_t{0}) {
        if (links) file_ = std::move(file);
        return;
      }
      // Somebody removed the file, and others lock the one that is made next.
    } else if (errno != EWOULDBLOCK) {
      return;
    }
    const auto now = syscalls.steadyNow();
    if (now >= deadline) return;
    syscalls.sleepFor(std::min(pause, deadline - now));
  }
}

// Unlocked in so many words, because a process forked meanwhile shares the open file.
FileLock::~FileLock() {
  if (file_) uninterrupted([&] { return syscalls_.flock(file_.get(), LOCK_UN); });
}

}  // namespace tavlo::linux_platform
