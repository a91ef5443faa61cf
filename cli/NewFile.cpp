#include "cli/NewFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

void writeNewFile(const std::string& path, std::string_view bytes) {
  constexpr mode_t kMode = 0666;  // less what the user masks
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
  if (fd < 0 && errno == EEXIST) throw Failure(path + " is there already; give another name, or remove it first");
  bool written = fd >= 0 && writeAll(fd, bytes);
  int error = errno;
  if (fd >= 0 && ::close(fd) != 0 && written) {
    written = false;
    error = errno;
  }
  if (written) return;
  if (fd >= 0) ::unlink(path.c_str());
  throw Failure("cannot write " + path + ": " + std::generic_category().message(error) +
                "; give a file in a folder that is there and can be written");
}

}  // namespace tavlo::cli
