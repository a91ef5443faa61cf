#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "cli/Program.h"

namespace {

// A standard stream that the caller closed is put in place, such that using it fails. Else the next file that
// is opened would get its number, and with it what is written to the stream.
void fillStandardStreams() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const int unusable = fd == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::fcntl(fd, F_GETFD) == -1) static_cast<void>(::open("/dev/null", unusable));
  }
}

}  // namespace

int main(int argc, char** argv) {
  fillStandardStreams();
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // a closed pipe is an error like any other
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return tavlo::cli::runProgram(arguments);
}
