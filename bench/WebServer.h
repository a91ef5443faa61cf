// An nginx of the benchmark's own on a loopback port, serving one folder; it ends with this object, or with the program
// however that ends.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "bench/TemporaryFolder.h"

namespace tavlo::bench {

class WebServer {
 public:
  // Requests are answered from the beginning. Throws std::runtime_error when it cannot be started.
  explicit WebServer(const std::filesystem::path& served);
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;
  ~WebServer();

  // "http://127.0.0.1:PORT/"
  [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + '/'; }

 private:
  TemporaryFolder folder_;  // of its settings and temporaries
  std::uint16_t port_ = 0;
  int kept_;  // the socket that keeps the port
  pid_t process_ = 0;
};

}  // namespace tavlo::bench
