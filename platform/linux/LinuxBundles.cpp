#include "platform/linux/LinuxBundles.h"

#include <optional>
#include <string>
#include <utility>

#include "common/Path.h"
#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

// The kind of what a path leads to, as S_IFMT has it.
std::optional<mode_t> kindAt(Syscalls& syscalls, const std::string& path) {
  struct stat status {};
  if (uninterrupted([&] { return syscalls.stat(path.c_str(), &status); }) != 0) return std::nullopt;
  return status.st_mode & static_cast<mode_t>(S_IFMT);
}

bool isPartOfAFileName(std::string_view text) {
  return !text.empty() && text.find('/') == std::string_view::npos && text.find('\0') == std::string_view::npos;
}

class Folder final : public platform::Bundle {
 public:
  Folder(std::string path, Syscalls& syscalls) : path_(std::move(path)), syscalls_(syscalls) {}

  Text pathForResourceOfType(std::string_view name, std::string_view type) override {
    if (!isPartOfAFileName(name) || !isPartOfAFileName(type)) return std::nullopt;
    Text path = appendedPathComponent(path_, std::string(name).append(".").append(type));
    return kindAt(syscalls_, *path) == S_IFREG ? path : std::nullopt;
  }

 private:
  const std::string path_;
  Syscalls& syscalls_;
};

}  // namespace

LinuxBundles::LinuxBundles(Text mainResources, Syscalls& syscalls)
    : mainResources_(std::move(mainResources)), syscalls_(syscalls) {}

std::shared_ptr<platform::Bundle> LinuxBundles::bundleWithPath(const Text& path) {
  if (!path || path->empty() || path->find('\0') != std::string::npos) return nullptr;
  if (kindAt(syscalls_, *path) != S_IFDIR) return nullptr;
  return std::make_shared<Folder>(*path, syscalls_);
}

}  // namespace tavlo::linux_platform
