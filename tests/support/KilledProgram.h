// A program that is killed while it works. It writes the line "ready" to its standard output when it begins, and then
// what it does, each line in one write.
//
//   KilledProgram writer(TAVLO_KILLED_WRITER, {"settings", folder, "1", "8"});
//   const std::vector<std::string> lines = writer.killAfter(std::chrono::milliseconds(5));
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace tavlo::test {

class KilledProgram {
 public:
  // Returns when it is ready. Throws std::runtime_error when it ends before.
  KilledProgram(std::string program, std::vector<std::string> arguments);
  KilledProgram(const KilledProgram&) = delete;
  KilledProgram& operator=(const KilledProgram&) = delete;
  ~KilledProgram();

  // Reads along until the time is over, kills the program (SIGKILL), and gives all lines that it has written by then.
  // Throws std::runtime_error when it has ended by itself.
  [[nodiscard]] std::vector<std::string> killAfter(std::chrono::microseconds delay);

 private:
  bool readMore();

  pid_t process_ = -1;
  int output_ = -1;
  std::string text_;
};

}  // namespace tavlo::test
