#include "tests/support/Desktop.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace tavlo::test {
namespace {

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe to the desktop");
  return ends;
}

}  // namespace

bool Desktop::isInstalled() {
  return std::system(
             "/usr/bin/python3 -c 'import dbus, gi' 2>/dev/null && command -v dbus-daemon >/dev/null && "
             "test -x /usr/libexec/xdg-desktop-portal") == 0;
}

Desktop::Desktop(const std::string& kind) {
  const auto [theirInput, ourInput] = makePipe();
  const auto [ourOutput, theirOutput] = makePipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, theirInput, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, theirOutput, STDOUT_FILENO);
  std::array<std::string, 5> words{"/usr/bin/python3", "-B",
                                   std::string(TAVLO_SOURCE_DIR) + "/tests/support/desktop.py", folder_.path().string(),
                                   kind};
  const std::array<char*, 6> arguments{words[0].data(), words[1].data(), words[2].data(),
                                       words[3].data(), words[4].data(), nullptr};
  const int error = ::posix_spawn(&process_, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(theirInput);
  ::close(theirOutput);
  input_ = ourInput;
  output_ = ::fdopen(ourOutput, "r");
  if (error != 0) throw std::runtime_error("the desktop cannot be started");

  const std::string address = next();
  if (!address.starts_with("unix:")) throw std::runtime_error("the desktop says " + address);
  ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

Desktop::~Desktop() {
  static_cast<void>(end());
  std::fclose(output_);
}

std::string Desktop::next() {
  std::string line;
  for (int c = std::fgetc(output_); c != EOF && c != '\n'; c = std::fgetc(output_)) line += static_cast<char>(c);
  return line;
}

void Desktop::tell(const std::string& line) {
  const std::string whole = line + "\n";
  if (::write(input_, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) {
    throw std::runtime_error("the desktop is gone");
  }
}

std::vector<std::string> Desktop::end() {
  if (input_ < 0) return {};
  ::close(std::exchange(input_, -1));
  std::vector<std::string> rest;
  for (std::string line = next(); !line.empty(); line = next()) rest.push_back(line);
  ::waitpid(process_, nullptr, 0);
  return rest;
}

}  // namespace tavlo::test
