#include "bench/WebServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "bench/Child.h"

namespace tavlo::bench {
namespace {

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// A socket that keeps a port for the server, without listening on it: both say that the port may be shared.
int keptPort(std::uint16_t& port) {
  const int kept = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int yes = 1;
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* const any = reinterpret_cast<sockaddr*>(&address);
  if (kept < 0 || ::setsockopt(kept, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes) != 0 || ::bind(kept, any, size) != 0 ||
      ::getsockname(kept, any, &size) != 0) {
    throw std::runtime_error("cannot have a loopback port");
  }
  port = ntohs(address.sin_port);
  return kept;
}

bool answers(std::uint16_t port) {
  const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  const bool connected = ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(client);
  return connected;
}

std::string settings(const std::string& folder, const std::string& served, std::uint16_t port) {
  std::string text =
      "daemon off; master_process off; error_log stderr error; pid " + folder +
      "/pid;\nevents { worker_connections 64; }\nhttp { access_log off; sendfile on; keepalive_requests 1000000;\n";
  for (const char* const kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"}) {
    text += std::string(kind) + "_temp_path " + folder + '/' + kind + ";\n";
  }
  return text + "server { listen 127.0.0.1:" + std::to_string(port) + " reuseport; root " + served + "; } }\n";
}

}  // namespace

WebServer::WebServer(const std::filesystem::path& served) : kept_(keptPort(port_)) {
  const auto program = programPath("nginx");
  if (!program) throw std::runtime_error("there is no nginx");
  const std::string folder = folder_.path();
  const std::string settingsFile = folder + "/settings";
  if (!(std::ofstream(settingsFile) << settings(folder, served, port_)).flush()) {
    throw std::runtime_error("cannot write " + settingsFile);
  }
  const pid_t parent = ::getpid();
  process_ = ::fork();
  if (process_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(1);
    ::execl(program->c_str(), "nginx", "-e", "stderr", "-p", folder.c_str(), "-c", settingsFile.c_str(), nullptr);
    ::_exit(127);
  }
  if (process_ < 0) throw std::runtime_error("cannot start nginx");
  while (!answers(port_)) {
    if (::waitpid(process_, nullptr, WNOHANG) != 0) throw std::runtime_error("nginx ended at once");
    ::usleep(1000);
  }
}

WebServer::~WebServer() {
  ::kill(process_, SIGTERM);
  ::waitpid(process_, nullptr, 0);
  ::close(kept_);
}

}  // namespace tavlo::bench
