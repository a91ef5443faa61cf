#include "platform/linux/RemoveTree.h"

#include <fcntl.h>

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

// Whether what could not be removed as a file may be a folder. In one that cannot be written to, the system tells
// of that first.
bool mayBeFolder(int error) { return error == EISDIR || error == EACCES || error == EPERM; }

// What is done with a folder's entries, deepest folder first. Only the folder at work and the one that is about
// to be are open, and what is being looked at in it; the way back is "..", and is checked.
class Remover {
 public:
  explicit Remover(Syscalls& syscalls) : syscalls_(syscalls) {}

  // Empties the folder as far as it can be.
  void empty(FileDescriptor folder) {
    if (!enter(std::move(folder), "")) return note(errno);
    while (!levels_.empty()) {
      Level& level = levels_.back();
      if (level.names.empty()) {
        if (!leave()) return;
        continue;
      }
      const std::string name = std::move(level.names.back());
      level.names.pop_back();
      remove(name);
    }
  }

  [[nodiscard]] int error() const { return error_; }

 private:
  struct Level {
    std::vector<std::string> names;  // still to be removed
    std::string name;                // in the folder above
    dev_t device = 0;
    ino_t inode = 0;
  };

  void remove(const std::string& name) {
    if (unlink(name, 0)) return;
    const int error = errno;
    if (!mayBeFolder(error)) return note(error);
    FileDescriptor child(syscalls_,
                         uninterrupted([&] { return syscalls_.openat(folder_.get(), name.c_str(), kFolder); }));
    if (child && enter(std::move(child), name)) return;
    const int reason = error == EISDIR ? errno : error;
    if (!unlink(name, AT_REMOVEDIR)) note(reason);  // it cannot be looked into, but may be empty
  }

  // False: it cannot be looked into, or has no way back; errno tells.
  [[nodiscard]] bool enter(FileDescriptor folder, const std::string& name) {
    Level level;
    level.name = name;
    if (!levels_.empty() && !above(folder, levels_.back())) return false;
    struct stat status {};
    if (uninterrupted([&] { return syscalls_.fstat(folder.get(), &status); }) != 0) return false;
    auto names = syscalls_.openFolderNames(folder.get());
    if (!names) return false;
    level.names = std::move(*names);
    level.device = status.st_dev;
    level.inode = status.st_ino;
    levels_.push_back(std::move(level));
    folder_ = std::move(folder);
    return true;
  }

  // False: the folder above is not the one that it was, so nothing more may be removed.
  [[nodiscard]] bool leave() {
    const Level left = std::move(levels_.back());
    levels_.pop_back();
    if (levels_.empty()) return true;
    auto parent = above(folder_, levels_.back());
    if (!parent) return note(errno), false;
    folder_ = std::move(*parent);
    if (!unlink(left.name, AT_REMOVEDIR)) note(errno);
    return true;
  }

  [[nodiscard]] std::optional<FileDescriptor> above(const FileDescriptor& folder, const Level& expected) {
    FileDescriptor parent(syscalls_, uninterrupted([&] { return syscalls_.openat(folder.get(), "..", kFolder); }));
    struct stat status {};
    if (!parent && errno == ENOENT) errno = ESTALE;  // it is the folder above that is gone
    if (!parent || uninterrupted([&] { return syscalls_.fstat(parent.get(), &status); }) != 0) return std::nullopt;
    if (status.st_dev == expected.device && status.st_ino == expected.inode) return parent;
    errno = ESTALE;
    return std::nullopt;
  }

  // True also for what is gone already.
  [[nodiscard]] bool unlink(const std::string& name, int flags) {
    return uninterrupted([&] { return syscalls_.unlinkat(folder_.get(), name.c_str(), flags); }) == 0 ||
           errno == ENOENT;
  }

  void note(int error) {
    if (error_ == 0) error_ = error;
  }

  Syscalls& syscalls_;
  FileDescriptor folder_;  // of the last level
  std::vector<Level> levels_;
  int error_ = 0;
};

// Of what may be a folder, from a failure to remove it as a file. `path` must have no slash at its end, behind which
// a link would be followed.
bool removeFolder(Syscalls& syscalls, const std::string& path, int error) {
  Remover remover(syscalls);
  if (FileDescriptor folder = openFile(syscalls, path, kFolder)) {
    remover.empty(std::move(folder));
  } else if (error == EISDIR) {
    error = errno;
  }
  if (uninterrupted([&] { return syscalls.unlinkat(AT_FDCWD, path.c_str(), AT_REMOVEDIR); }) == 0) return true;
  if (remover.error() != 0) {
    errno = remover.error();
  } else if (error != EISDIR) {
    errno = error;
  }
  return false;
}

// "/", "." and ".." cannot be removed, so nothing in them may be.
bool canBeRemoved(std::string_view withoutSlash) {
  const std::string_view name = withoutSlash.substr(withoutSlash.rfind('/') + 1);
  return !name.empty() && name != "." && name != "..";
}

}  // namespace

bool removeTree(Syscalls& syscalls, const std::string& path) {
  const std::string_view withoutSlash = std::string_view(path).substr(0, path.find_last_not_of('/') + 1);
  if (!canBeRemoved(withoutSlash)) {
    errno = EINVAL;
    return false;
  }
  if (uninterrupted([&] { return syscalls.unlink(path.c_str()); }) == 0) return true;
  const int error = errno;
  return mayBeFolder(error) && removeFolder(syscalls, std::string(withoutSlash), error);
}

}  // namespace tavlo::linux_platform
