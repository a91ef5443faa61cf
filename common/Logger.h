// The SDK's log sink. The host app installs one; the component writes to it.
//
// Values   one message a call: no level, no prefix, no newline at the end.
// Absent   with nothing installed, messages are dropped.
// Threads  any thread, any time. writeLine() is called without a lock held and may be called by several
//          threads at once.
#pragma once

#include <memory>
#include <string_view>

namespace tavlo {

class Logger {
 public:
  Logger() = default;
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
  virtual ~Logger() = default;

  // The class operation of the contract: hands the message to the installed logger.
  static void printLog(std::string_view message);

  static void install(std::shared_ptr<Logger> logger);
  [[nodiscard]] static std::shared_ptr<Logger> installed();

  virtual void writeLine(std::string_view message) = 0;
};

}  // namespace tavlo
