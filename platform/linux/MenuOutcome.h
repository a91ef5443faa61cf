// What became of an open-in menu, for a host that wants to know; nothing of the component does.
#pragma once

#include <functional>
#include <string_view>

namespace tavlo::linux_platform {

enum class MenuOutcome {
  opened,     // an app was chosen, and the desktop started it with the file
  cancelled,  // none was chosen, or the menu was taken back: its controller is gone or shows another one
  failed,     // it could not be shown, or no app could be handed the file
};

// Gets the outcome and what explains it, in English; "" where an app was opened. Called once a menu: before the
// presentation returns, on its thread, for one that is not shown, and else on the thread of MainLoop.h, where it may
// present again but must not wait. Not called for a menu that is up when the process exits. What it throws on that
// thread is dropped.
using MenuHandler = std::function<void(MenuOutcome outcome, std::string_view explanation)>;

}  // namespace tavlo::linux_platform
