#include "platform/linux/LinuxFileManager.h"

#include <fcntl.h>

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include "platform/linux/FileOps.h"
#include "platform/linux/RemoveTree.h"

namespace tavlo::linux_platform {
namespace {

using platform::Existence;
using platform::FileResult;
using platform::Removal;

// The system would read a path with a NUL as the shorter one before it.
bool isUsable(const Text& path) { return path && !path->empty() && path->find('\0') == std::string::npos; }

// Any other would lead out of its directory, or be the directory itself.
bool isItemName(std::string_view name) {
  return !name.empty() && name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// What became of a call on this path, from errno when it failed.
FileResult result(bool succeeded, const Text& path) {
  if (succeeded) return FileResult::success();
  return FileResult::failure(std::generic_category().message(errno) + ": " + *path);
}

FileResult namesNothing() { return FileResult::failure("no path: it is absent, empty or holds a NUL"); }

}  // namespace

LinuxFileManager::LinuxFileManager(Container container, Syscalls& syscalls)
    : container_(std::move(container)),
      documents_(container_.documents().string()),
      syscalls_(syscalls),
      replacer_(syscalls, container_.temporary()) {}

// Where it cannot be made, what is to be made in it fails, and tells why.
Text LinuxFileManager::documentDirectory() {
  if (!documentsWereThere_) documentsWereThere_ = makeDocuments();
  constexpr std::size_t kRoom = 64;  // for what callers append to it
  Text path(std::in_place);
  path->reserve(documents_.size() + kRoom);
  path->append(documents_);
  return path;
}

bool LinuxFileManager::makeDocuments() {
  return container_.makeFolder(container_.documents(), Container::Durable::fresh, syscalls_);
}

// Once they were there, Documents are not looked at again before something cannot be made in them. True: they are
// there now, and a second attempt is due. If not, errno stays.
bool LinuxFileManager::documentsCameBack(const std::string& path) {
  const int error = errno;
  const bool gone = error == ENOENT && documentsWereThere_ && path.starts_with(documents_ + '/');
  if (gone && makeDocuments()) return true;
  errno = error;
  return false;
}

Existence LinuxFileManager::fileExistsAtPathIsDirectory(const Text& path) {
  struct stat status {};
  if (!isUsable(path) || uninterrupted([&] { return syscalls_.stat(path->c_str(), &status); }) != 0) {
    return Existence::missing;
  }
  return S_ISDIR(status.st_mode) ? Existence::directory : Existence::file;
}

FileResult LinuxFileManager::removeItemAtPath(const Text& path, Removal removal) {
  if (!isUsable(path)) return namesNothing();
  return result(removal == Removal::fileOnly ? removeFile(syscalls_, *path) : removeTree(syscalls_, *path), path);
}

// The directory is looked up once for all. By its path goes what is no plain file.
void LinuxFileManager::removeItemsOfDirectoryAtPath(const Text& directory, const std::vector<std::string>& names) {
  if (names.empty() || !isUsable(directory)) return;
  const FileDescriptor folder = openFile(syscalls_, *directory, O_PATH | O_DIRECTORY);
  for (const std::string& name : names) {
    if (!isItemName(name)) continue;
    const auto unlink = [&] { return syscalls_.unlinkat(folder.get(), name.c_str(), 0); };
    if (folder && uninterrupted(unlink) == 0) continue;
    static_cast<void>(removeItemAtPath(appendedPathComponent(directory, name), Removal::anything));
  }
}

FileResult LinuxFileManager::createDirectoryAtPath(const Text& path) {
  if (!isUsable(path)) return namesNothing();
  const auto make = [&] { return uninterrupted([&] { return syscalls_.mkdir(path->c_str(), 0700); }) == 0; };
  return result(make() || (documentsCameBack(*path) && make()), path);
}

std::optional<std::vector<std::string>> LinuxFileManager::contentsOfDirectoryAtPath(const Text& path) {
  return isUsable(path) ? syscalls_.folderNames(path->c_str()) : std::nullopt;
}

std::optional<std::string> LinuxFileManager::dataWithContentsOfFile(const Text& path) {
  if (!isUsable(path)) return std::nullopt;
  return readRegularFile(syscalls_, *path, kLargestFile);
}

FileResult LinuxFileManager::writeToFileAtomically(std::string_view bytes, const Text& path,
                                                   platform::Durable durable) {
  if (!isUsable(path)) return namesNothing();
  const auto write = [&] { return replacer_.replace(*path, bytes, durable); };
  return result(container_.makeFolder(container_.temporary(), Container::Durable::fresh, syscalls_) &&
                    (write() || (documentsCameBack(*path) && write())),
                path);
}

}  // namespace tavlo::linux_platform
