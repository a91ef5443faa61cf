// LoopbackServer: a few pages over HTTP on this machine alone, for as long as the object lives.
//
//   const LoopbackServer server({{"/a.png", bytes}});
//   fetch(server.url("/a.png"));
//
// Values   GET only; a path that is no page gets status 404. One connection at a time, closed after its answer.
// Threads  a thread of its own serves; it is joined at the end, whatever a client does.
// Throws   the constructor: Failure when no port can be had.
#pragma once

#include <map>
#include <string>
#include <thread>

namespace tavlo::cli {

class LoopbackServer {
 public:
  using Pages = std::map<std::string, std::string>;  // by path

  explicit LoopbackServer(Pages pages);
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;
  ~LoopbackServer();

  [[nodiscard]] std::string url(const std::string& path) const;

 private:
  // Closed at the end.
  class Descriptor {
   public:
    explicit Descriptor(int fd);
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();
    [[nodiscard]] int get() const { return fd_; }

   private:
    const int fd_;
  };

  void serve();
  void answer(int connection) const;
  // False when the server is to stop.
  [[nodiscard]] bool waitFor(int fd, short events) const;
  [[nodiscard]] std::string readRequest(int connection) const;
  void send(int connection, const std::string& bytes) const;

  const Pages pages_;
  const Descriptor listener_;
  const Descriptor stop_;  // has something to read when the server is to stop
  int port_ = 0;
  std::thread thread_;
};

}  // namespace tavlo::cli
