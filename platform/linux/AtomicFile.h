// Replacing a file whole, so that a reader, a crash of the process and a crash of the machine meet the old
// contents or the new ones and nothing else.
//
// Values   the file gets mode 0600. A symbolic link of its name is replaced, not followed.
// Absent   false: the step that failed is in errno. The old file is whole, or the new one when all that
//          failed is making its name durable; the temporary is removed.
// Threads  any number of threads and processes at once, the last one wins.
//
// A temporary is named tavlo-<process>-<number>.tmp and owned by an advisory lock that its writer holds until
// it has its final name. The kernel drops the lock with the writer, however that ends, so a temporary that
// can be locked has no owner any more.
#pragma once

#include <atomic>
#include <filesystem>
#include <string_view>

#include "platform/FileManager.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

// Replaces files by way of temporaries in one folder, which must be of their file system. Abandoned temporaries are
// swept before its first file, so that they cannot fill a disk that the new file then has no room on, and again after
// a sweep that left one and after a file that failed: to list the folder for every file took a seventh of the time of
// a small download.
class FileReplacer {
 public:
  FileReplacer(Syscalls& syscalls, std::filesystem::path temporaryFolder);

  // With Durable::contents only the bytes are flushed: after a crash of the machine the old file may be back, whole.
  [[nodiscard]] bool replace(const std::filesystem::path& target, std::string_view bytes,
                             platform::Durable durable = platform::Durable::name);

 private:
  Syscalls& syscalls_;
  const std::filesystem::path temporaryFolder_;
  std::atomic<bool> swept_ = false;
};

// One file, by a replacer of its own.
[[nodiscard]] bool replaceFile(Syscalls& syscalls, const std::filesystem::path& temporaryFolder,
                               const std::filesystem::path& target, std::string_view bytes,
                               platform::Durable durable = platform::Durable::name);

// Removes the temporaries whose owner is gone. False: one could not be removed, or the folder not be listed.
bool sweepTemporaries(Syscalls& syscalls, const std::filesystem::path& temporaryFolder);

}  // namespace tavlo::linux_platform
