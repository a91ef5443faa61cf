#include "host/LogFileWriter.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <utility>

#include "common/Path.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using TimePoint = std::chrono::system_clock::time_point;

constexpr std::string_view kDropped = "(lines dropped: ";

std::string timeText(TimePoint moment) {
  const auto time = std::chrono::floor<std::chrono::milliseconds>(moment);
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::array<char, 64> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                    static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                    static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::string lineOf(TimePoint time, std::string_view message) {
  std::string line = timeText(time);
  line.reserve(line.size() + message.size() + 2);
  line += ' ';
  for (const char c : message) {
    if (c == '\n') {
      line += "\\n";
    } else if (c == '\r') {
      line += "\\r";
    } else {
      line += c;
    }
  }
  return line += '\n';
}

}  // namespace

LogFileWriter::LogFileWriter(const fs::path& documentsFolder, Clock clock)
    : file_(documentsFolder / kCacheDirectoryName / kLogFileName), clock_(std::move(clock)) {}

void LogFileWriter::writeLine(std::string_view message) noexcept {
  try {
    const TimePoint time = clock_();
    std::string text = lineOf(time, message);
    const std::lock_guard lock(mutex_);
    heldBackSize_ += text.size();
    heldBack_.push_back({.time = time, .text = std::move(text)});
    writeHeldBack();
    while (heldBackSize_ > kMostHeldBack) dropOldest();
  } catch (...) {
    const std::lock_guard lock(mutex_);
    ++dropped_;
  }
}

void LogFileWriter::writeHeldBack() {
  std::error_code ignored;
  const fs::file_type type = fs::symlink_status(file_, ignored).type();
  if (type != fs::file_type::regular && type != fs::file_type::not_found) return;

  std::ofstream file;
  file.rdbuf()->pubsetbuf(nullptr, 0);  // no buffer: each line goes out in one write
  // Opened for reading too, which does not wait for a reader if a pipe has come into the way meanwhile.
  file.open(file_, std::ios::in | std::ios::app | std::ios::binary);
  if (!file.is_open()) return;
  if (type == fs::file_type::not_found) {  // before there is a line in it
    constexpr auto kNoLink = fs::perm_options::replace | fs::perm_options::nofollow;
    fs::permissions(file_, fs::perms::owner_read | fs::perms::owner_write, kNoLink, ignored);
  }

  if (dropped_ > 0) {
    const std::string count = std::to_string(dropped_);
    if (!append(file, lineOf(lastDroppedAt_, std::string(kDropped) + count + ")"))) return;
    dropped_ = 0;
  }
  while (!heldBack_.empty()) {
    if (!append(file, heldBack_.front().text)) return dropOldest();
    heldBackSize_ -= heldBack_.front().text.size();
    heldBack_.pop_front();
  }
}

bool LogFileWriter::append(std::ostream& file, const std::string& text) {
  file << (cutShort_ ? "\n" + text : text) << std::flush;
  cutShort_ = !file.good();
  return !cutShort_;
}

void LogFileWriter::dropOldest() {
  ++dropped_;
  lastDroppedAt_ = heldBack_.front().time;
  heldBackSize_ -= heldBack_.front().text.size();
  heldBack_.pop_front();
}

}  // namespace tavlo::host
