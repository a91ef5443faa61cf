// LogFile: the SDK's log file, read line by line.
//
// Values   a line is without its line feed. One that reaches kLongestLine comes in parts, each as a line of its own,
//          so that a file without line feeds needs no more memory than others.
// Throws   Failure, which names the file: what has its name is no regular file, or cannot be read.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tavlo::cli {

class LogFile {
 public:
  static constexpr std::size_t kLongestLine = std::size_t{1} << 20U;  // bytes

  using Take = std::function<void(std::string_view line)>;

  // nullptr: there is none.
  [[nodiscard]] static std::unique_ptr<LogFile> open(const std::filesystem::path& path);

  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile();

  // Reading begins with the last `count` lines of those there are.
  void seekToLast(std::size_t count);

  // The lines that are whole by now and were not taken yet. What is left of a line is kept.
  void takeLines(const Take& take);

  // That too, as a line of its own.
  void takeRest(const Take& take);

  // Whether the name leads to another file by now, or this one is shorter than what was read of it.
  [[nodiscard]] bool isOutdated() const;

 private:
  LogFile(std::filesystem::path path, int fd) : path_(std::move(path)), fd_(fd) {}
  [[nodiscard]] std::string_view read(off_t at);
  [[noreturn]] void fail() const;

  const std::filesystem::path path_;
  const int fd_;
  off_t at_ = 0;
  std::string rest_;
  std::string buffer_;
};

// A line of the log: its time, as it stands there, and its message. Without a time: all of it is the message.
struct LogLine {
  std::string_view time;  // "2026-11-21T09:30:00.123Z", or empty
  std::string_view message;
};
[[nodiscard]] LogLine splitLogLine(std::string_view line);

}  // namespace tavlo::cli
