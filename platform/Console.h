// The platform's console log.
//
// Values   one message a call; the console adds the newline.
// Threads  any thread, any time; messages of different threads never mix within a line.
#pragma once

#include <string_view>

namespace tavlo::platform {

class Console {
 public:
  Console() = default;
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  virtual ~Console() = default;

  virtual void log(std::string_view message) = 0;
};

}  // namespace tavlo::platform
