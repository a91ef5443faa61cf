#include "cli/LogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

constexpr std::size_t kPiece = 65536;

[[noreturn]] void failOn(const std::filesystem::path& path, const std::string& why) {
  throw Failure("cannot read " + path.string() + ": " + why + "; check what lies there, and the rights to it");
}

}  // namespace

// A FIFO does not block, and is refused.
std::unique_ptr<LogFile> LogFile::open(const std::filesystem::path& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (fd < 0 && (errno == ENOENT || errno == ENOTDIR)) return nullptr;
  if (fd < 0) failOn(path, std::generic_category().message(errno));
  auto file = std::unique_ptr<LogFile>(new LogFile(path, fd));
  struct stat status {};
  if (::fstat(fd, &status) != 0) file->fail();
  if (!S_ISREG(status.st_mode)) failOn(path, "it is no regular file");
  file->buffer_.resize(kPiece);
  return file;
}

LogFile::~LogFile() { ::close(fd_); }

void LogFile::fail() const { failOn(path_, std::generic_category().message(errno)); }

std::string_view LogFile::read(off_t at) {
  ssize_t count = 0;
  do {
    count = ::pread(fd_, buffer_.data(), buffer_.size(), at);
  } while (count < 0 && errno == EINTR);
  if (count < 0) fail();
  return std::string_view(buffer_).substr(0, static_cast<std::size_t>(count));
}

// Looks from the end backwards for the line feed before those lines. The one that ends the file ends its last line.
void LogFile::seekToLast(std::size_t count) {
  struct stat status {};
  if (::fstat(fd_, &status) != 0) fail();
  std::size_t found = 0;
  for (off_t end = status.st_size; end > 0;) {
    const off_t begin = std::max<off_t>(0, end - static_cast<off_t>(kPiece));
    const std::string_view piece = read(begin).substr(0, static_cast<std::size_t>(end - begin));
    for (std::size_t i = piece.size(); i-- > 0;) {
      const off_t place = begin + static_cast<off_t>(i);
      if (piece[i] != '\n' || place + 1 == status.st_size || ++found < count) continue;
      at_ = place + 1;
      return;
    }
    end = begin;
  }
  at_ = 0;
}

void LogFile::takeLines(const Take& take) {
  for (std::string_view piece = read(at_); !piece.empty(); piece = read(at_)) {
    at_ += static_cast<off_t>(piece.size());
    for (auto end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
      rest_ += piece.substr(0, end);
      take(rest_);
      rest_.clear();
      piece.remove_prefix(end + 1);
    }
    rest_ += piece;
    if (rest_.size() >= kLongestLine) takeRest(take);
  }
}

void LogFile::takeRest(const Take& take) {
  if (!rest_.empty()) take(rest_);
  rest_.clear();
}

bool LogFile::isOutdated() const {
  struct stat open {};
  struct stat named {};
  if (::stat(path_.c_str(), &named) != 0) return true;
  if (::fstat(fd_, &open) != 0) fail();
  return open.st_dev != named.st_dev || open.st_ino != named.st_ino || open.st_size < at_;
}

LogLine splitLogLine(std::string_view line) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00.000Z ";
  if (line.size() < kForm.size()) return {.time = {}, .message = line};
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool isDigit = line[i] >= '0' && line[i] <= '9';
    if (kForm[i] == '0' ? !isDigit : line[i] != kForm[i]) return {.time = {}, .message = line};
  }
  return {.time = line.substr(0, kForm.size() - 1), .message = line.substr(kForm.size())};
}

}  // namespace tavlo::cli
