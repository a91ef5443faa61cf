#include "platform/linux/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <utility>

#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

constexpr std::string_view kPrefix = "tavlo-";
constexpr std::string_view kSuffix = ".tmp";
constexpr int kMostNames = 100;

std::filesystem::path newName(const std::filesystem::path& folder) {
  static std::atomic<unsigned> number{0};
  std::string name(kPrefix);
  name += std::to_string(::getpid()) + '-' + std::to_string(++number);
  return folder / name.append(kSuffix);
}

// An empty file of its own in the folder, locked; removed at the end unless it got its final name.
class Temporary {
 public:
  Temporary(Syscalls& syscalls, const std::filesystem::path& folder) : syscalls_(syscalls) {
    for (int i = 0; i < kMostNames && !file_; ++i) {
      path_ = newName(folder);
      if (!take()) return;
    }
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
    if (!file_ || renamed_) return;
    const int error = errno;
    removeFile(syscalls_, path_);
    errno = error;
  }

  explicit operator bool() const { return file_ && !failed_; }

  [[nodiscard]] bool write(std::string_view bytes) {
    return writeAll(syscalls_, file_.get(), bytes) && syscalls_.fsync(file_.get()) == 0;
  }

  [[nodiscard]] bool renameTo(const std::filesystem::path& target) {
    renamed_ = renameFile(syscalls_, path_, target);
    return renamed_;
  }

 private:
  // False: no name will do. A name that is there already, or that a sweep gets hold of between the making
  // and the locking, is given up for the next one. It asks for no memory once there is a file to remove.
  bool take() {
    FileDescriptor file = openFile(syscalls_, path_, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!file) return errno == EEXIST;
    const bool locked = tryLock(syscalls_, file.get());
    if (!locked && errno == EWOULDBLOCK) return true;
    const auto links = locked ? linkCount(syscalls_, file.get()) : std::nullopt;
    if (links == nlink_t{0}) return true;
    file_ = std::move(file);
    failed_ = !links;
    return true;
  }

  Syscalls& syscalls_;
  std::filesystem::path path_;
  FileDescriptor file_;
  bool failed_ = false;  // it could not be locked, or not looked at
  bool renamed_ = false;
};

// False: it is still there, and not because its owner lives.
bool removeIfAbandoned(Syscalls& syscalls, const std::filesystem::path& path) {
  const FileDescriptor file = openFile(syscalls, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  if (!file) return errno == ENOENT;
  if (!tryLock(syscalls, file.get())) return errno == EWOULDBLOCK;
  // Named still: the owner may have renamed it since it was opened here, and then the lock is free as well.
  return isNamed(syscalls, file.get(), path) && removeFile(syscalls, path);
}

}  // namespace

FileReplacer::FileReplacer(Syscalls& syscalls, std::filesystem::path temporaryFolder)
    : syscalls_(syscalls), temporaryFolder_(std::move(temporaryFolder)) {}

bool FileReplacer::replace(const std::filesystem::path& target, std::string_view bytes, platform::Durable durable) {
  if (!swept_) swept_ = sweepTemporaries(syscalls_, temporaryFolder_);
  Temporary temporary(syscalls_, temporaryFolder_);
  const bool replaced = temporary && temporary.write(bytes) && temporary.renameTo(target) &&
                        (durable == platform::Durable::contents || syncFolder(syscalls_, target.parent_path()));
  if (!replaced) swept_ = false;
  return replaced;
}

bool replaceFile(Syscalls& syscalls, const std::filesystem::path& temporaryFolder, const std::filesystem::path& target,
                 std::string_view bytes, platform::Durable durable) {
  return FileReplacer(syscalls, temporaryFolder).replace(target, bytes, durable);
}

bool sweepTemporaries(Syscalls& syscalls, const std::filesystem::path& temporaryFolder) {
  const auto names = syscalls.folderNames(temporaryFolder.c_str());
  if (!names) return false;
  bool swept = true;
  for (const std::string& name : *names) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) continue;
    swept = removeIfAbandoned(syscalls, temporaryFolder / name) && swept;
  }
  return swept;
}

}  // namespace tavlo::linux_platform
