#include "platform/linux/Container.h"

#include <fcntl.h>

#include <stdexcept>
#include <string_view>
#include <system_error>

#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestDomain = 240;  // with ".plist.damaged" a name of a file system's usual 255 bytes

bool isDomain(std::string_view name) {
  return !name.empty() && name.size() <= kLongestDomain && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// The executable's file name. The kernel marks one that was replaced or removed while it runs, as an update
// does; the mark is no part of the name, unless a file of that whole name is there.
std::optional<std::string> executableName(Syscalls& syscalls) {
  constexpr std::string_view kRemoved = " (deleted)";
  auto target = syscalls.readlink("/proc/self/exe");
  if (!target) return std::nullopt;
  struct stat status {};
  if (target->ends_with(kRemoved) && syscalls.stat(target->c_str(), &status) != 0) {
    target->resize(target->size() - kRemoved.size());
  }
  return fs::path(*target).filename().string();
}

std::optional<std::string> checkedDomain(const std::string& given, Syscalls& syscalls) {
  if (given.empty()) {
    auto name = executableName(syscalls);
    return name && isDomain(*name) ? name : std::nullopt;
  }
  if (isDomain(given)) return given;
  throw std::invalid_argument("the domain \"" + given +
                              "\" is no file name: it must have 1 to 240 bytes, no \"/\" and no NUL, and be "
                              "neither \".\" nor \"..\"");
}

fs::path checkedFolder(const fs::path& given) {
  if (given.empty()) throw std::invalid_argument("the container is an empty path");
  if (given.native().find('\0') != std::string::npos) throw std::invalid_argument("the container's path holds a NUL");
  std::error_code error;
  const fs::path absolute = fs::absolute(given, error);
  if (error) {
    throw std::invalid_argument("the container " + given.string() + " cannot be made absolute (" + error.message() +
                                "): give an absolute path");
  }
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

std::optional<fs::path> dataHome(Syscalls& syscalls) {
  const auto absolute = [](const std::optional<std::string>& path) { return path && fs::path(*path).is_absolute(); };
  if (const auto home = syscalls.environment("XDG_DATA_HOME"); absolute(home)) return fs::path(*home);
  if (const auto home = syscalls.environment("HOME"); absolute(home)) return fs::path(*home) / ".local/share";
  if (const auto home = syscalls.passwordDatabaseHome(); absolute(home)) return fs::path(*home) / ".local/share";
  return std::nullopt;
}

bool isFolder(Syscalls& syscalls, const fs::path& path) {
  struct stat status {};
  if (uninterrupted([&] { return syscalls.stat(path.c_str(), &status); }) != 0) return false;
  if (!S_ISDIR(status.st_mode)) errno = ENOTDIR;
  return S_ISDIR(status.st_mode);
}

// A folder that was there already may have been made by a process that did not live to make its name durable.
// No folder is made in another one before that one's name is durable, so that this holds for the last one only.
bool make(Syscalls& syscalls, const fs::path& folder, Container::Durable durable) {
  const bool wasThere = isFolder(syscalls, folder);
  if (wasThere && durable == Container::Durable::fresh) return true;
  if (!wasThere) {
    if (errno != ENOENT || !make(syscalls, folder.parent_path(), Container::Durable::all)) return false;
    const bool made = uninterrupted([&] { return syscalls.mkdir(folder.c_str(), 0700); }) == 0;
    if (!made && (errno != EEXIST || !isFolder(syscalls, folder))) return false;
  }
  const FileDescriptor above = openFile(syscalls, folder.parent_path(), O_RDONLY | O_DIRECTORY);
  if (!above) return wasThere && errno == EACCES;  // the folder above is another's, and so are the names in it
  return syscalls.fsync(above.get()) == 0;
}

}  // namespace

std::optional<Container> Container::locate(const std::optional<fs::path>& folder, const std::string& domain,
                                           Syscalls& syscalls) {
  auto name = checkedDomain(domain, syscalls);
  if (folder) {
    auto checked = checkedFolder(*folder);
    if (!name) return std::nullopt;
    return Container(std::move(checked), std::move(*name));
  }
  const auto home = dataHome(syscalls);
  if (!name || !home) return std::nullopt;
  return Container(*home / *name, *name);
}

bool Container::makeFolder(const fs::path& folder, Durable durable, Syscalls& syscalls) const {
  return (folder == folder_ || makeFolder(folder.parent_path(), durable, syscalls)) && make(syscalls, folder, durable);
}

bool Container::makeFolders() const {
  return makeFolder(documents()) && makeFolder(preferences()) && makeFolder(temporary());
}

}  // namespace tavlo::linux_platform
