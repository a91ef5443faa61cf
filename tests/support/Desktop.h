// A desktop of a test's own: a session bus, the real desktop portal, and a chooser of apps that the test answers for
// (tests/support/desktop.py). While it lives, this process uses its bus. Not for several at once.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class Desktop {
 public:
  // "whole", "no-chooser", "no-portal" or "deaf", as the script has it.
  explicit Desktop(const std::string& kind);
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;
  ~Desktop();

  // Debian's own Python with the modules for the bus, the bus and the portal.
  [[nodiscard]] static bool isInstalled();

  // The next thing that happens, once it does: "asked PARENT URI", "closed", "opened PATH".
  [[nodiscard]] std::string next();

  // Answers for the chooser, or ends a part: "choose", "cancel", "fail", "end portal", "end bus".
  void tell(const std::string& line);

  // Ends it; what happened that was not asked for by next().
  [[nodiscard]] std::vector<std::string> end();

 private:
  TemporaryFolder folder_;
  pid_t process_ = -1;
  int input_ = -1;
  std::FILE* output_ = nullptr;
};

}  // namespace tavlo::test
