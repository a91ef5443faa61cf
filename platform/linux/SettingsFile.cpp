#include "platform/linux/SettingsFile.h"

#include <fcntl.h>

#include <chrono>
#include <utility>

#include "common/PropertyList.h"
#include "platform/linux/AtomicFile.h"
#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds kClockTick = std::chrono::milliseconds(100);  // generous: the kernel's is at most 10 ms

std::int64_t sinceEpoch(const timespec& time) {
  return (std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec)).count();
}

SettingsFile::Identity identityOf(const struct stat& status) {
  return {.device = status.st_dev,
          .inode = status.st_ino,
          .size = status.st_size,
          .modified = sinceEpoch(status.st_mtim),
          .changed = sinceEpoch(status.st_ctim)};
}

}  // namespace

std::optional<SettingsFile::Identity> SettingsFile::identity() const {
  struct stat status {};
  if (uninterrupted([&] { return syscalls_.stat(path_.c_str(), &status); }) != 0) return std::nullopt;
  return identityOf(status);
}

SettingsFile::Contents SettingsFile::read() const {
  const auto before = nanoseconds(syscalls_.systemNow().time_since_epoch()).count();
  const FileDescriptor file = openFile(syscalls_, path_, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file) return {.state = errno == ENOENT ? State::missing : State::unreadable};
  struct stat status {};
  if (uninterrupted([&] { return syscalls_.fstat(file.get(), &status); }) != 0) return {};
  if (!S_ISREG(status.st_mode) || status.st_size > std::int64_t{kLargest}) return {};
  const auto bytes = readWhole(syscalls_, file.get(), kLargest);
  if (!bytes) return {};

  Contents contents{.state = State::damaged};
  if (const Identity found = identityOf(status); found.changed < before - kClockTick.count()) contents.identity = found;
  property_list::Decoded decoded = property_list::decode(*bytes);
  const ValueMap* const root = decoded.value ? decoded.value->ifMap() : nullptr;
  if (root) {
    contents.state = State::whole;
    contents.entries = *root;
  } else {
    contents.error = decoded.value ? "its root is no dictionary" : std::move(decoded.error);
  }
  return contents;
}

bool SettingsFile::write(ValueMap entries, const std::filesystem::path& temporaryFolder) const {
  const auto bytes = property_list::encode(Value::map(std::move(entries)));
  return bytes && bytes->size() <= kLargest && replaceFile(syscalls_, temporaryFolder, path_, *bytes);
}

bool SettingsFile::setAside() const {
  return renameFile(syscalls_, path_, damagedPath()) && syncFolder(syscalls_, path_.parent_path());
}

}  // namespace tavlo::linux_platform
