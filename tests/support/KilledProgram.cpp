#include "tests/support/KilledProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "tests/support/Python.h"

namespace tavlo::test {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr const char* kReady = "ready\n";

}  // namespace

KilledProgram::KilledProgram(std::string program, std::vector<std::string> arguments) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe to " + program);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  std::vector<char*> words{program.data()};
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  const int error = ::posix_spawn(&process_, words[0], &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  output_ = ends[0];
  if (error != 0) throw std::runtime_error(program + " cannot be started");
  while (!text_.starts_with(kReady)) {
    if (!readMore()) throw std::runtime_error(program + " has ended");
  }
}

KilledProgram::~KilledProgram() {
  if (process_ > 0) {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  ::close(output_);
}

std::vector<std::string> KilledProgram::killAfter(std::chrono::microseconds delay) {
  const auto end = steady_clock::now() + delay;
  for (nanoseconds left = delay; left.count() > 0; left = end - steady_clock::now()) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
    const timespec timeout{.tv_sec = seconds.count(), .tv_nsec = static_cast<long>((left - seconds).count())};
    pollfd output{.fd = output_, .events = POLLIN, .revents = 0};
    if (::ppoll(&output, 1, &timeout, nullptr) > 0 && !readMore()) break;
  }
  ::kill(process_, SIGKILL);
  while (readMore()) {
  }
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = -1;
  if (!WIFSIGNALED(status)) throw std::runtime_error("it has ended by itself: " + text_);
  return splitLines(text_.substr(std::string(kReady).size()));
}

bool KilledProgram::readMore() {
  std::array<char, 65536> bytes{};
  const ssize_t count = ::read(output_, bytes.data(), bytes.size());
  if (count > 0) text_.append(bytes.data(), static_cast<std::size_t>(count));
  return count > 0;
}

}  // namespace tavlo::test
