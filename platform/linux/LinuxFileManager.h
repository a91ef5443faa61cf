// LinuxFileManager: files by POSIX calls.
//
// Values   Documents is that of the container, made with mode 0700 when it is missing: as it is first asked for, and,
//          removed later, as soon as something is to be made in it. Files and folders that are made are their
//          user's alone (modes 0600 and 0700).
// Absent   no data from a file of more than kLargestFile bytes, nor from one that is no regular file; neither
//          blocks. A failure's description is the system's, and the path: "Permission denied: /data/TavloCache".
// Durable  written files replace earlier ones by a rename from the container's tmp, so they must lie on its file
//          system; see AtomicFile.h.
// Threads  any thread, any time.
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"
#include "platform/linux/AtomicFile.h"
#include "platform/linux/Container.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class LinuxFileManager final : public platform::FileManager {
 public:
  static constexpr std::size_t kLargestFile = std::size_t{256} << 20U;  // bytes

  explicit LinuxFileManager(Container container, Syscalls& syscalls = Syscalls::real());

  [[nodiscard]] Text documentDirectory() override;
  [[nodiscard]] platform::Existence fileExistsAtPathIsDirectory(const Text& path) override;
  [[nodiscard]] platform::FileResult removeItemAtPath(const Text& path, platform::Removal removal) override;
  void removeItemsOfDirectoryAtPath(const Text& directory, const std::vector<std::string>& names) override;
  [[nodiscard]] platform::FileResult createDirectoryAtPath(const Text& path) override;
  [[nodiscard]] std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override;
  [[nodiscard]] std::optional<std::string> dataWithContentsOfFile(const Text& path) override;
  [[nodiscard]] platform::FileResult writeToFileAtomically(std::string_view bytes, const Text& path,
                                                           platform::Durable durable) override;

 private:
  bool makeDocuments();
  bool documentsCameBack(const std::string& path);

  const Container container_;
  const std::string documents_;
  std::atomic<bool> documentsWereThere_ = false;
  Syscalls& syscalls_;
  FileReplacer replacer_;
};

}  // namespace tavlo::linux_platform
