#include "platform/linux/PngImages.h"

#include <optional>
#include <string>

#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {

std::shared_ptr<const platform::Image> PngImages::imageWithContentsOfFile(const Text& path) {
  if (!path || path->find('\0') != std::string::npos) return nullptr;
  const auto file = readRegularFile(syscalls_, *path, kLargestFile);
  return file ? decodePng(*file) : nullptr;
}

}  // namespace tavlo::linux_platform
