#include "tests/support/BadServer.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace tavlo::test {
namespace {

constexpr std::array kProxies{"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"};

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe to the server");
  return ends;
}

}  // namespace

BadServer::BadServer() {
  for (const char* const proxy : kProxies) ::unsetenv(proxy);
  const auto [theirInput, ourInput] = makePipe();
  const auto [ourOutput, theirOutput] = makePipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, theirInput, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, theirOutput, STDOUT_FILENO);
  std::string python = "/usr/bin/python3";
  std::string noBytecode = "-B";
  std::string script = std::string(TAVLO_SOURCE_DIR) + "/tests/support/bad_server.py";
  std::string folder = folder_.path().string();
  const std::array<char*, 5> arguments{python.data(), noBytecode.data(), script.data(), folder.data(), nullptr};
  const int error = ::posix_spawn(&process_, python.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(theirInput);
  ::close(theirOutput);
  input_ = ourInput;
  output_ = ::fdopen(ourOutput, "r");
  if (error != 0) throw std::runtime_error("the server cannot be started");

  std::istringstream line(readLine());
  std::string name;
  for (int port = 0; line >> name >> port;) ports_[name] = port;
  if (!ports_.contains("refused")) throw std::runtime_error("the server does not tell its ports");
}

BadServer::~BadServer() {
  ::close(input_);
  ::waitpid(process_, nullptr, 0);
  std::fclose(output_);
}

std::string BadServer::url(const std::string& text) const {
  std::string url = text.starts_with('/') ? "http://127.0.0.1:{http}" + text : text;
  for (const auto& [name, port] : ports_) {
    const std::string inBraces = "{" + name + "}";
    if (const auto at = url.find(inBraces); at != std::string::npos) {
      url.replace(at, inBraces.size(), std::to_string(port));
    }
  }
  return url;
}

void BadServer::waitUntilHeld(int requests) {
  for (int i = 0; i < requests; ++i) {
    if (const std::string line = readLine(); line != "held") throw std::runtime_error("the server says " + line);
  }
}

void BadServer::openGate() {
  if (::write(input_, "open\n", 5) != 5) throw std::runtime_error("the server is gone");
}

std::string BadServer::readLine() {
  std::array<char, 1024> line{};
  if (std::fgets(line.data(), line.size(), output_) == nullptr) throw std::runtime_error("the server is silent");
  std::string text = line.data();
  text.pop_back();
  return text;
}

}  // namespace tavlo::test
