#include "cli/Output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

[[noreturn]] void failWrite() {
  throw Failure("cannot write standard output: " + std::generic_category().message(errno) +
                "; the answer is not complete");
}

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value && *value != '\0';
}

bool isDumbTerminal() {
  const char* const terminal = std::getenv("TERM");
  return terminal && std::string_view(terminal) == "dumb";
}

void writeError(std::string_view prefix, std::string_view message) {
  constexpr std::size_t kLongest = 1000;  // a message may quote a file's contents
  const std::string line = std::string(prefix) + shortened(harmless(message), kLongest) + '\n';
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}

}  // namespace

Output::Output(bool quiet, Color color) : quiet_(quiet), color_(color) {}

void Output::answer(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) failWrite();
}

void Output::answerLine(std::string_view line) {
  answer(line);
  answer("\n");
}

void Output::finish() {
  if (std::fflush(stdout) != 0) failWrite();
}

void Output::note(std::string_view text) const {
  if (!quiet_) writeError("tavlo: note: ", text);
}

void Output::progress(std::string_view text) {
  if (quiet_ || isatty(STDERR_FILENO) != 1) return;
  std::string line = "\r";
  line += harmless(text);
  const std::size_t width = displayWidth(text);
  if (width < progressWidth_) line.append(progressWidth_ - width, ' ');
  progressWidth_ = width;
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}

void Output::endProgress(std::string_view text) {
  if (isatty(STDERR_FILENO) != 1) return note(text);
  progress(text);
  if (!quiet_) std::fputs("\n", stderr);
}

TableLook Output::tableLook() const {
  TableLook look;
  const bool terminal = isatty(STDOUT_FILENO) == 1;
  look.styled =
      color_ == Color::always || (color_ == Color::automatic && terminal && !isSet("NO_COLOR") && !isDumbTerminal());
  if (terminal) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    look.width = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
  }
  return look;
}

void reportError(std::string_view message) { writeError("tavlo: ", message); }

}  // namespace tavlo::cli
