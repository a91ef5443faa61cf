#include "cli/Input.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

// An open input, read piece by piece.
class Input {
 public:
  explicit Input(const std::string& path)
      : name_(inputName(path)),
        isStandard_(path == "-"),
        fd_(isStandard_ ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
    if (fd_ < 0) fail();
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input() {
    if (!isStandard_) ::close(fd_);
  }

  // Empty at the end.
  std::string_view next() {
    ssize_t count = 0;
    do {
      count = ::read(fd_, buffer_.data(), buffer_.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) fail();
    return {buffer_.data(), static_cast<std::size_t>(count)};
  }

 private:
  [[noreturn]] void fail() const {
    const std::string why = std::generic_category().message(errno);
    if (isStandard_) throw Failure("cannot read standard input: " + why + "; redirect it from a file or a pipe");
    throw Failure("cannot read " + name_ + ": " + why + "; give a file that is there and can be read");
  }

  const std::string name_;
  const bool isStandard_;
  const int fd_;
  std::array<char, 65536> buffer_{};
};

}  // namespace

std::string inputName(const std::string& path) { return path == "-" ? "standard input" : path; }

std::string readInput(const std::string& path, std::size_t longest) {
  Input input(path);
  std::string bytes;
  for (auto piece = input.next(); !piece.empty(); piece = input.next()) {
    bytes += piece;
    if (bytes.size() > longest) {
      throw Failure(inputName(path) + " is longer than " + std::to_string(longest) + " bytes; give a shorter file");
    }
  }
  return bytes;
}

void forEachInputLine(const std::function<void(const std::string&)>& take) {
  Input input("-");
  std::string line;
  for (auto piece = input.next(); !piece.empty(); piece = input.next()) {
    for (auto end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
      line += piece.substr(0, end);
      take(line);
      line.clear();
      piece.remove_prefix(end + 1);
    }
    line += piece;
  }
  if (!line.empty()) take(line);
}

}  // namespace tavlo::cli
