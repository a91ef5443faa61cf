#include "host/ExceptionReporter.h"

#include "common/Logger.h"

namespace tavlo::host {

void ExceptionReporter::report(std::string_view message) { Logger::printLog(message); }

}  // namespace tavlo::host
