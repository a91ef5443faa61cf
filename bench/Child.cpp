#include "bench/Child.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace tavlo::bench {

std::optional<std::string> programPath(const std::string& name) {
  const char* const variable = std::getenv("PATH");
  const std::string folders = std::string(variable != nullptr ? variable : "") + ":/usr/sbin";
  for (std::size_t at = 0; at < folders.size();) {
    const std::size_t end = std::min(folders.find(':', at), folders.size());
    std::string path = folders.substr(at, end - at) + '/' + name;
    if (::access(path.c_str(), X_OK) == 0) return path;
    at = end + 1;
  }
  return std::nullopt;
}

void run(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& each : command) arguments.push_back(const_cast<char*>(each.c_str()));
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int error = ::posix_spawnp(&child, arguments.front(), nullptr, nullptr, arguments.data(), ::environ);
  if (error != 0) throw std::system_error(error, std::generic_category(), "cannot start " + command.front());
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "cannot wait for " + command.front());
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw std::runtime_error(command.front() + " ended with the wait status " + std::to_string(status));
  }
}

}  // namespace tavlo::bench
