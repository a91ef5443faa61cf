// The SDK's exception reporter. The host app installs one; the component tells it what it caught.
//
// Values   one message a call.
// Absent   with nothing installed, reports are dropped.
// Threads  any thread, any time; report() is called without a lock held.
// Throws   whatever the installed reporter throws passes on to the caller of the operation.
#pragma once

#include <memory>
#include <string_view>

namespace tavlo {

class TavloException {
 public:
  TavloException() = default;
  TavloException(const TavloException&) = delete;
  TavloException& operator=(const TavloException&) = delete;
  virtual ~TavloException() = default;

  // The class operation of the contract: hands the message to the installed reporter.
  static void tavloException(std::string_view message);

  static void install(std::shared_ptr<TavloException> reporter);
  [[nodiscard]] static std::shared_ptr<TavloException> installed();

  virtual void report(std::string_view message) = 0;
};

}  // namespace tavlo
