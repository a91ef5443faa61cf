#include "tests/cli/ChildProgram.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

using tavlo::test::readFile;
using tavlo::test::TemporaryFolder;
using tavlo::test::writeFile;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// The child's end of its standard output, and what the parent reads from, if anything.
struct OutputEnds {
  int child = -1;
  int parent = -1;
};

OutputEnds openTerminal(unsigned short width) {
  const int parent = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (parent < 0 || ::grantpt(parent) != 0 || ::unlockpt(parent) != 0) throw std::runtime_error("no terminal");
  winsize size{};
  size.ws_col = width;
  static_cast<void>(::ioctl(parent, TIOCSWINSZ, &size));
  return {.child = ::open(::ptsname(parent), O_RDWR | O_NOCTTY | O_CLOEXEC), .parent = parent};
}

OutputEnds openOutput(const Setting& setting, const std::string& captured) {
  if (setting.outputPath) return {.child = ::open(setting.outputPath->c_str(), O_WRONLY | O_CLOEXEC)};
  switch (setting.output) {
    case Stream::captured: return {.child = ::open(captured.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)};
    case Stream::closed: return {};
    case Stream::terminal: return openTerminal(setting.terminalWidth);
    case Stream::closedPipe: {
      std::array<int, 2> ends{};
      if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
      ::close(ends[0]);
      return {.child = ends[1]};
    }
  }
  return {};
}

std::string takeTerminal(int fd) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(fd, buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  ::close(fd);
  std::erase(text, '\r');
  return text;
}

void putInPlace(int fd, int number) {
  if (fd < 0) {
    ::close(number);
  } else {
    ::dup2(fd, number);
  }
}

int exitCodeOf(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

void PrintTo(const Result& result, std::ostream* stream) {
  *stream << "exit code " << result.exitCode << "\n--- out\n" << result.out << "--- err\n" << result.err << "---";
}

Result run(const std::vector<std::string>& arguments, const Setting& setting) {
  const TemporaryFolder home;
  const TemporaryFolder files;
  writeFile(files / "in", setting.input);
  std::vector<std::string> words{std::getenv("TAVLO_PROGRAM")};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables{"HOME=" + home.path().string()};
  for (const auto& [name, value] : setting.environment) variables.emplace_back(name).append("=").append(value);
  const std::vector<char*> argv = pointersTo(words);
  const std::vector<char*> environment = pointersTo(variables);

  const std::string inputPath = setting.inputPath.value_or((files / "in").string());
  const int input = setting.inputClosed ? -1 : ::open(inputPath.c_str(), O_RDONLY | O_CLOEXEC);
  const OutputEnds output = openOutput(setting, (files / "out").string());
  const std::string captured = (files / "err").string();
  const OutputEnds error =
      setting.errorTerminal
          ? openTerminal(setting.terminalWidth)
          : OutputEnds{.child = ::open(captured.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), .parent = -1};

  const pid_t child = ::fork();
  if (child == 0) {
    putInPlace(setting.errorClosed ? -1 : error.child, STDERR_FILENO);
    putInPlace(output.child, STDOUT_FILENO);
    putInPlace(input, STDIN_FILENO);
    if (::chdir(setting.folder.c_str()) == 0) ::execve(argv[0], argv.data(), environment.data());
    ::_exit(127);
  }
  for (const int fd : {input, output.child, error.child}) ::close(fd);
  if (setting.afterStart) setting.afterStart(child);
  Result result;
  if (output.parent >= 0) result.out = takeTerminal(output.parent);
  if (error.parent >= 0) result.err = takeTerminal(error.parent);
  result.exitCode = exitCodeOf(child);
  if (output.parent < 0) result.out = readFile(files / "out");
  if (error.parent < 0) result.err = readFile(captured);
  return result;
}

}  // namespace tavlo::cli::test
