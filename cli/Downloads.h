// Downloads: banner images that are fetched by the component, and watched on their way.
//
// Threads  start() and wait() on one thread. The downloads run on the workers of the platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/Text.h"
#include "platform/Platform.h"

namespace tavlo::cli {

struct Download {
  std::string url;
  bool isDone = false;
  bool isStored = false;
  std::optional<std::size_t> bytes;  // absent when none came
  Text path;                         // where the image was to be stored
  std::vector<std::string> lines;    // what was logged
};

struct DownloadCounts {
  std::size_t all = 0;
  std::size_t done = 0;
  std::size_t failed = 0;  // of those that are done
  std::size_t bytes = 0;
};

class Downloads {
 public:
  // Installs a platform that hands everything on to `real`, and a logger that does so to the log file of the
  // Documents folder, for the rest of the process.
  Downloads(std::shared_ptr<platform::Platform> real, const std::string& documentsFolder);
  Downloads(const Downloads&) = delete;
  Downloads& operator=(const Downloads&) = delete;
  ~Downloads();

  // Makes the cache directory first, when it is missing.
  void start(const std::vector<std::string>& urls);

  // Returns when all are done, or when `wakeUp`, a descriptor, has something to read: true when all are done.
  // `tell` is called on this thread whenever some have ended.
  [[nodiscard]] bool wait(int wakeUp, const std::function<void(const DownloadCounts&)>& tell);

  [[nodiscard]] DownloadCounts counts() const;
  [[nodiscard]] std::vector<Download> all() const;  // in the order in which they were started

 private:
  class Board;
  class WatchingPlatform;

  const std::shared_ptr<Board> board_;
};

}  // namespace tavlo::cli
