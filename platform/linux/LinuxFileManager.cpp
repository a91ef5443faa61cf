#include "platform/linux/LinuxFileManager.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/linux/AtomicFile.h"
#include "platform/linux/FileOps.h"
#include "platform/linux/RemoveTree.h"

namespace tavlo::linux_platform {
namespace {

using platform::Existence;
using platform::FileResult;
using platform::Removal;

// The system would read a path with a NUL as the shorter one before it.
bool names(const Text& path) { return path && !path->empty() && path->find('\0') == std::string::npos; }

// What became of a call on this path, from errno when it failed.
FileResult result(bool succeeded, const Text& path) {
  if (succeeded) return FileResult::success();
  return FileResult::failure(std::generic_category().message(errno) + ": " + *path);
}

FileResult namesNothing() { return FileResult::failure("no path: it is absent, empty or holds a NUL"); }

}  // namespace

LinuxFileManager::LinuxFileManager(Container container, Syscalls& syscalls)
    : container_(std::move(container)), syscalls_(syscalls) {}

// Where it cannot be made, what is to be made in it fails, and tells why.
Text LinuxFileManager::documentDirectory() {
  static_cast<void>(container_.makeFolder(container_.documents(), Container::Durable::fresh, syscalls_));
  return container_.documents().string();
}

Existence LinuxFileManager::fileExistsAtPathIsDirectory(const Text& path) {
  struct stat status {};
  if (!names(path) || uninterrupted([&] { return syscalls_.stat(path->c_str(), &status); }) != 0) {
    return Existence::missing;
  }
  return S_ISDIR(status.st_mode) ? Existence::directory : Existence::file;
}

FileResult LinuxFileManager::removeItemAtPath(const Text& path, Removal removal) {
  if (!names(path)) return namesNothing();
  return result(removal == Removal::fileOnly ? removeFile(syscalls_, *path) : removeTree(syscalls_, *path), path);
}

FileResult LinuxFileManager::createDirectoryAtPath(const Text& path) {
  if (!names(path)) return namesNothing();
  return result(uninterrupted([&] { return syscalls_.mkdir(path->c_str(), 0700); }) == 0, path);
}

std::optional<std::vector<std::string>> LinuxFileManager::contentsOfDirectoryAtPath(const Text& path) {
  return names(path) ? syscalls_.folderNames(path->c_str()) : std::nullopt;
}

std::optional<std::string> LinuxFileManager::dataWithContentsOfFile(const Text& path) {
  if (!names(path)) return std::nullopt;
  return readRegularFile(syscalls_, *path, kLargestFile);
}

FileResult LinuxFileManager::writeToFileAtomically(std::string_view bytes, const Text& path,
                                                   platform::Durable durable) {
  if (!names(path)) return namesNothing();
  const auto temporary = container_.temporary();
  return result(container_.makeFolder(temporary, Container::Durable::fresh, syscalls_) &&
                    replaceFile(syscalls_, temporary, *path, bytes, durable),
                path);
}

}  // namespace tavlo::linux_platform
