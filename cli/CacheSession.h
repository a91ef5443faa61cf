// CacheSession: the media cache as an app has it, with the container's platform and log file in place for the whole
// process.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "cli/Commands.h"
#include "cli/Place.h"
#include "common/Logger.h"
#include "host/LogFileWriter.h"

namespace tavlo::cli {

// The cache directory of a container. Nothing is made.
[[nodiscard]] std::filesystem::path cacheFolder(const Place& place);

// Writes the log file, and hands each line on.
class CacheLog final : public Logger {
 public:
  using Tell = std::function<void(std::string_view line)>;

  CacheLog(const std::filesystem::path& documentsFolder, Tell tell) : file_(documentsFolder), tell_(std::move(tell)) {}

  void writeLine(std::string_view message) override {
    file_.writeLine(message);
    tell_(message);
  }

 private:
  host::LogFileWriter file_;
  const Tell tell_;
};

class CacheSession {
 public:
  explicit CacheSession(const Run& run, const linux_platform::Options& outside = {});

  [[nodiscard]] std::filesystem::path folder() const { return cacheFolder(place_); }

  // Prints what an operation answered, and, when that is nothing, why: the last line that it logged.
  void answer(const Text& text) const;
  void noteWhyAbsent() const;
  void noteLastLine() const;  // when there is any

 private:
  [[nodiscard]] std::string lastLine() const;

  struct LastLine {
    std::mutex mutex;
    std::string text;
  };

  const Run& run_;
  const Place place_;
  const std::shared_ptr<LastLine> lastLine_ = std::make_shared<LastLine>();
};

}  // namespace tavlo::cli
