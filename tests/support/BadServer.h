// The server of tests/support/bad_server.py, for as long as this object lives.
//
//   BadServer server;
//   data.dataWithContentsOfUrl(server.url("/short"));
//
// While it lives, no proxy stands between the test and loopback.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <map>
#include <string>

#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class BadServer {
 public:
  BadServer();
  BadServer(const BadServer&) = delete;
  BadServer& operator=(const BadServer&) = delete;
  ~BadServer();

  // What every good answer has for a body.
  static inline const std::string kBody{"exact\0bytes\r\n\xff", 14};

  // A path is one of the plain server. In other texts the name of a port in braces becomes its number.
  [[nodiscard]] std::string url(const std::string& text) const;
  [[nodiscard]] bool hasIPv6() const { return ports_.at("ipv6") != 0; }
  [[nodiscard]] std::filesystem::path certificateAuthority() const { return folder_ / "authority.pem"; }
  // What the answer "bomb" holds: 64 MiB of zeros, compressed.
  [[nodiscard]] std::string bomb() const { return readFile(folder_ / "bomb"); }

  // Returns when this many requests more wait at the gate.
  void waitUntilHeld(int requests);
  void openGate();

 private:
  [[nodiscard]] std::string readLine();

  TemporaryFolder folder_;
  std::map<std::string, int> ports_;
  pid_t process_ = -1;
  int input_ = -1;
  std::FILE* output_ = nullptr;
};

}  // namespace tavlo::test
