#include "common/TavloException.h"

#include "common/Slot.h"

namespace tavlo {

void TavloException::tavloException(std::string_view message) {
  if (const auto reporter = installed()) reporter->report(message);
}

void TavloException::install(std::shared_ptr<TavloException> reporter) {
  processSlot<TavloException>().store(std::move(reporter));
}

std::shared_ptr<TavloException> TavloException::installed() { return processSlot<TavloException>().load(); }

}  // namespace tavlo
