// Runs the built program, without a shell.
//
//   EXPECT_EQ(run({"encode", "a b"}), (Result{0, "a%20b\n", ""}));
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace tavlo::cli::test {

struct Result {
  int exitCode = -1;  // 128 and the signal's number for a child that a signal ended
  std::string out;
  std::string err;

  friend bool operator==(const Result&, const Result&) = default;
};
void PrintTo(const Result& result, std::ostream* stream);

enum class Stream { captured, closed, closedPipe, terminal };

struct Setting {
  std::string input = {};
  std::map<std::string, std::string> environment = {};  // all there is, but HOME, which is an empty folder
  std::string folder = "/";                             // the working directory
  std::optional<std::string> inputPath = {};            // in place of `input`
  std::optional<std::string> outputPath = {};           // in place of what `output` says
  Stream output = Stream::captured;                     // a terminal's lines end in "\n" here, too
  unsigned short terminalWidth = 0;
  bool inputClosed = false;
  bool errorClosed = false;
  bool errorTerminal = false;                      // standard error is a terminal; `output` is none then
  std::function<void(int child)> afterStart = {};  // called with the child's process id while it runs
};

[[nodiscard]] Result run(const std::vector<std::string>& arguments, const Setting& setting = {});

}  // namespace tavlo::cli::test
