// A limit that the process's files cannot grow beyond, as on a full disk.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace tavlo::test {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{.rlim_cur = size, .rlim_max = before_.rlim_max};
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int) = SIG_DFL;
};

}  // namespace tavlo::test
