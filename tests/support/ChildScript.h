// A Python script of tests/support that runs for as long as this object lives, and is spoken to in lines.
//
//   ChildScript script("geoclue_world.py", {folder});
//   script.say("daemon");
//   script.expect("done");
//
// The end of the script's input, when this object goes, tells it to end; that is waited for. Its messages go to
// standard error.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

namespace tavlo::test {

class ChildScript {
 public:
  ChildScript(const std::string& name, const std::vector<std::string>& arguments);
  ChildScript(const ChildScript&) = delete;
  ChildScript& operator=(const ChildScript&) = delete;
  ~ChildScript();

  // Both throw std::runtime_error when the script has ended.
  void say(const std::string& line);
  [[nodiscard]] std::string readLine();

  // Throws std::runtime_error, with what the script says instead, when that is not its next line.
  void expect(const std::string& line);

 private:
  pid_t process_ = -1;
  int input_ = -1;
  std::FILE* output_ = nullptr;
};

}  // namespace tavlo::test
