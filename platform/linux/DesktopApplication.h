// DesktopApplication: the other apps of the desktop, as the portal and the scheme handlers know them.
//
// Values   a URL is parsed strictly (common/UrlGrammar.h); one without a scheme can be opened by nobody. A file's URL
//          names a path of this machine: no host, or "localhost". The file is opened anew for each menu, for reading
//          only, and the portal is asked to let the user choose, however well it knows what opens such files. A
//          view's window handle is passed on when it begins with "x11:" or "wayland:" and is printable ASCII; the
//          rectangle and the animation have no counterpart.
// Absent   no session bus, no portal, no regular file that can be read: not shown, and nothing is opened in its
//          place. Shown is what the portal has taken on; a chooser that it then lacks, or that breaks, is an outcome.
// Threads  any thread, any time. Presenting waits for the portal, for kPatience at most, and never for the user's
//          choice; on the thread of MainLoop.h it does not wait, and a menu that is asked for there counts as shown.
//
// A controller has one menu at a time: presenting again takes the earlier one back, and so does its end. What the
// user has chosen by then stays opened.
#pragma once

#include <chrono>
#include <memory>
#include <string_view>

#include "platform/Application.h"
#include "platform/linux/MenuOutcome.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class DesktopApplication final : public platform::Application {
 public:
  static constexpr std::chrono::milliseconds kPatience{5'000};

  // The seam must outlive the controllers.
  explicit DesktopApplication(MenuHandler handler, std::chrono::milliseconds patience = kPatience,
                              Syscalls& syscalls = Syscalls::real());

  [[nodiscard]] bool canOpenURL(std::string_view url) override;
  [[nodiscard]] std::shared_ptr<platform::DocumentInteractionController> interactionControllerWithURL(
      std::string_view url) override;

 private:
  const MenuHandler handler_;
  const std::chrono::milliseconds patience_;
  Syscalls& syscalls_;
};

}  // namespace tavlo::linux_platform
