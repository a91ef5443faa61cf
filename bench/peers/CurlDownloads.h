// Downloads by libcurl, as a program without our component would write them.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tavlo::bench::peers {

struct Download {
  std::string url;
  std::string file;
};

// Threads with a handle each, which is kept: of every call, one takes the next download until there are none. A file is
// written as it comes, to a temporary that is synced and then renamed; the folder is not synced.
class CurlDownloads {
 public:
  CurlDownloads(std::size_t threads, std::string temporaryFolder);
  CurlDownloads(const CurlDownloads&) = delete;
  CurlDownloads& operator=(const CurlDownloads&) = delete;
  ~CurlDownloads();

  // Throws std::runtime_error when one of them failed.
  void fetch(const std::vector<Download>& downloads);

 private:
  class Handle;

  std::vector<std::unique_ptr<Handle>> handles_;
};

}  // namespace tavlo::bench::peers
