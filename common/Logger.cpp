#include "common/Logger.h"

#include "common/Slot.h"

namespace tavlo {

void Logger::printLog(std::string_view message) {
  if (const auto logger = installed()) logger->writeLine(message);
}

void Logger::install(std::shared_ptr<Logger> logger) { processSlot<Logger>().store(std::move(logger)); }

std::shared_ptr<Logger> Logger::installed() { return processSlot<Logger>().load(); }

}  // namespace tavlo
