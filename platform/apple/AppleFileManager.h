// AppleFileManager: files by NSFileManager and NSData, the Documents directory by the platform's search list.
//
// Values   a Documents directory that is missing is made.
// Absent   no data from what is no regular file, which never blocks; nothing under a path that is no UTF-8, lone
//          surrogates included. A failure's description is the platform's own.
// Durable  the platform's atomic write does not flush; what it wrote is flushed after its rename, and, where the name
//          is to last, its folder.
// Threads  any thread, any time.
//
// Run here over GNUstep Base.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"

namespace tavlo::apple_platform {

class AppleFileManager final : public platform::FileManager {
 public:
  [[nodiscard]] Text documentDirectory() override;
  [[nodiscard]] Text documentDirectoryUrl() override;
  [[nodiscard]] platform::Existence fileExistsAtPathIsDirectory(const Text& path) override;
  [[nodiscard]] platform::FileResult removeItemAtPath(const Text& path, platform::Removal removal) override;
  [[nodiscard]] platform::FileResult createDirectoryAtPath(const Text& path) override;
  [[nodiscard]] std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override;
  [[nodiscard]] std::optional<std::string> dataWithContentsOfFile(const Text& path) override;
  [[nodiscard]] platform::FileResult writeToFileAtomically(std::string_view bytes, const Text& path,
                                                           platform::Durable durable) override;
};

}  // namespace tavlo::apple_platform
