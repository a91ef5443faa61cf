// LogFileWriter: the SDK's log as a file, DOCUMENTS/TavloCache/TavloLogFile.txt.
//
// Values   one line a message, appended: "2026-11-21T09:30:00.123Z <message>", UTC. A line feed in a message
//          is written as "\n" and a carriage return as "\r" (two characters each); all else as it comes. A file that
//          is made gets mode 0600; one that is there keeps its own.
// Absent   the cache directory is never made here. While the file cannot be opened (no directory yet,
//          something in the way that is no regular file, a symbolic link included), lines are held back,
//          64 KiB at most with their newlines, and written before the next one that can be. What has no
//          room is dropped, oldest first, and told by one line "(lines dropped: <count>)" in its place, with
//          the time of the last one whose time is known, else of 1970.
// Durable  opened anew for each message, so the file and its directory may be cleared, removed or replaced at
//          any time. Nothing is flushed to the disk itself: lines survive the process, not the machine. Lines
//          that are held back end with the writer.
// Threads  any thread, any time. Each line is one write, so that lines of several processes do not mix.
// Throws   nothing: a line that cannot be written counts as dropped.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <iosfwd>
#include <mutex>
#include <string>
#include <string_view>

#include "common/Logger.h"
#include "host/Clock.h"

namespace tavlo::host {

class LogFileWriter final : public Logger {
 public:
  static constexpr std::size_t kMostHeldBack = 65536;  // bytes

  explicit LogFileWriter(const std::filesystem::path& documentsFolder, Clock clock = systemClock());

  void writeLine(std::string_view message) noexcept override;

 private:
  struct Line {
    std::chrono::system_clock::time_point time;
    std::string text;  // with its newline
  };

  void writeHeldBack();
  [[nodiscard]] bool append(std::ostream& file, const std::string& text);
  void dropOldest();

  const std::filesystem::path file_;
  const Clock clock_;

  std::mutex mutex_;  // guards what follows
  std::deque<Line> heldBack_;
  std::size_t heldBackSize_ = 0;
  std::size_t dropped_ = 0;
  std::chrono::system_clock::time_point lastDroppedAt_;
  bool cutShort_ = false;  // the file may end within a line
};

}  // namespace tavlo::host
