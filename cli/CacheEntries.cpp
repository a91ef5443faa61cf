#include "cli/CacheEntries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

#include "cache/CacheDirectory.h"
#include "cli/ContentKind.h"
#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

// Closed at the end; without one that is open it does nothing.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  [[nodiscard]] int get() const { return fd_; }

 private:
  const int fd_;
};

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

[[noreturn]] void fail(const std::filesystem::path& folder) {
  throw Failure("cannot read the cache directory " + folder.string() + ": " + std::generic_category().message(errno) +
                "; check that it is a folder, and the rights to it");
}

// A pipe that took the file's place does not block, a link is not followed.
std::string_view kindOfFile(int folder, const std::string& name) {
  const Descriptor file(::openat(folder, name.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY));
  struct stat status {};
  if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return "unreadable";
  std::array<char, kTellingBytes> beginning{};
  std::size_t length = 0;
  while (length < beginning.size()) {
    const ssize_t count = ::read(file.get(), beginning.data() + length, beginning.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return "unreadable";
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  return contentKind({beginning.data(), length});
}

std::string_view kindOf(int folder, const std::string& name, mode_t mode) {
  if (S_ISLNK(mode)) return "symbolic link";
  if (S_ISDIR(mode)) return "folder";
  if (!S_ISREG(mode)) return "other";
  return name == kLogFileName ? "log" : kindOfFile(folder, name);
}

}  // namespace

std::optional<std::vector<CacheEntry>> cacheEntries(const std::filesystem::path& folder) {
  const Directory directory(::opendir(folder.c_str()));
  if (!directory) {
    if (errno == ENOENT) return std::nullopt;
    fail(folder);
  }
  const int fd = ::dirfd(directory.get());
  std::vector<CacheEntry> entries;
  errno = 0;
  while (const dirent* const found = ::readdir(directory.get())) {
    const std::string name = found->d_name;
    struct stat status {};
    const bool isThere = ::fstatat(fd, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;  // else it is gone by now
    if (isThere && name != "." && name != "..") {
      CacheEntry entry{.name = name, .kind = kindOf(fd, name, status.st_mode), .size = {}, .modified = status.st_mtime};
      if (S_ISREG(status.st_mode)) entry.size = static_cast<std::uint64_t>(status.st_size);
      entries.push_back(std::move(entry));
    }
    errno = 0;
  }
  if (errno != 0) fail(folder);
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return entries;
}

}  // namespace tavlo::cli
