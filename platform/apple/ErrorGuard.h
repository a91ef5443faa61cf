// Where C++ exceptions are caught, for files in Objective-C++, which do not (ExceptionGuard.h says why).
#pragma once

#include <functional>

#include "common/Text.h"

namespace tavlo::apple_platform {

// What a std::exception says that came out of the call; absent when none did. Throws std::bad_alloc, and whatever else
// comes out.
[[nodiscard]] Text errorThrownBy(const std::function<void()>& call);

// Nothing comes out, exceptions of the platform's included.
void runWithoutThrowing(const std::function<void()>& call) noexcept;

}  // namespace tavlo::apple_platform
