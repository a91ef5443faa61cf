#include "cli/LoopbackServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

constexpr std::size_t kLongestRequest = 16384;

sockaddr* addressOf(sockaddr_in& address) {
  return reinterpret_cast<sockaddr*>(&address);  // as the system's calls want it
}

}  // namespace

LoopbackServer::Descriptor::Descriptor(int fd) : fd_(fd) {
  if (fd_ < 0) throw Failure("cannot start a server on this machine: " + std::generic_category().message(errno));
}

LoopbackServer::Descriptor::~Descriptor() { ::close(fd_); }

LoopbackServer::LoopbackServer(Pages pages)
    : pages_(std::move(pages)),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
      stop_(::eventfd(0, EFD_CLOEXEC)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (::bind(listener_.get(), addressOf(address), length) != 0 || ::listen(listener_.get(), SOMAXCONN) != 0 ||
      ::getsockname(listener_.get(), addressOf(address), &length) != 0) {
    throw Failure("cannot start a server on this machine: " + std::generic_category().message(errno));
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

LoopbackServer::~LoopbackServer() {
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(stop_.get(), &one, sizeof one);
  thread_.join();
}

std::string LoopbackServer::url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void LoopbackServer::serve() {
  while (waitFor(listener_.get(), POLLIN)) {
    const int connection = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (connection < 0) continue;  // the client has gone again
    answer(connection);
    ::close(connection);
  }
}

bool LoopbackServer::waitFor(int fd, short events) const {
  std::array<pollfd, 2> watched = {pollfd{.fd = fd, .events = events, .revents = 0},
                                   pollfd{.fd = stop_.get(), .events = POLLIN, .revents = 0}};
  while (::poll(watched.data(), watched.size(), -1) < 0) {
  }
  return watched[1].revents == 0;
}

std::string LoopbackServer::readRequest(int connection) const {
  std::string request;
  std::array<char, 1024> buffer{};
  while (request.find("\r\n\r\n") == std::string::npos && request.size() < kLongestRequest) {
    if (!waitFor(connection, POLLIN)) return "";
    const ssize_t count = ::recv(connection, buffer.data(), buffer.size(), 0);
    if (count <= 0) return "";
    request.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return request;
}

void LoopbackServer::send(int connection, const std::string& bytes) const {
  for (std::size_t sent = 0; sent < bytes.size();) {
    if (!waitFor(connection, POLLOUT)) return;
    const ssize_t count = ::send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

void LoopbackServer::answer(int connection) const {
  const std::string request = readRequest(connection);
  constexpr std::string_view kGet = "GET ";
  if (!request.starts_with(kGet)) return;
  const std::string path = request.substr(kGet.size(), request.find(' ', kGet.size()) - kGet.size());
  const auto page = pages_.find(path);
  const bool isThere = page != pages_.end();
  const std::string body = isThere ? page->second : "<html>no such page</html>";
  send(connection, std::string("HTTP/1.1 ") + (isThere ? "200 OK" : "404 Not Found") +
                       "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
  static_cast<void>(::shutdown(connection, SHUT_WR));
}

}  // namespace tavlo::cli
