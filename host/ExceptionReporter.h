// ExceptionReporter: exception reports go to the SDK's log.
//
// Logs     each report's message as it comes.
// Threads  any thread, any time.
#pragma once

#include <string_view>

#include "common/TavloException.h"

namespace tavlo::host {

class ExceptionReporter final : public TavloException {
 public:
  void report(std::string_view message) override;
};

}  // namespace tavlo::host
