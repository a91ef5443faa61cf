#include "platform/apple/ErrorGuard.h"

#include <exception>
#include <new>

namespace tavlo::apple_platform {

Text errorThrownBy(const std::function<void()>& call) {
  try {
    call();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  }
  return std::nullopt;
}

void runWithoutThrowing(const std::function<void()>& call) noexcept {
  try {
    call();
  } catch (...) {
    return;  // there is nobody to tell
  }
}

}  // namespace tavlo::apple_platform
