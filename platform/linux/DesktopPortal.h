// DesktopPortal: what the desktop's services do for the app, by the library that talks to them.
//
// Values   a scheme is in lowercase. A parent window is named as the portal does, "" is none.
// Absent   built without the library, no scheme has a handler and no menu is shown.
// Threads  any thread, any time.
//
// The session bus is the one that DBUS_SESSION_BUS_ADDRESS names, else the socket `bus` in XDG_RUNTIME_DIR; none is
// started. Each menu has a connection of its own, so that nothing is shared with the host's use of the bus and the
// loss of the bus ends no process.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/FileOps.h"
#include "platform/linux/MenuOutcome.h"

namespace tavlo::linux_platform {

// Whether an app is installed for URLs of the scheme.
[[nodiscard]] bool hasHandlerForScheme(const std::string& scheme);

// Whether the portal runs, or can be started. Asks the session bus, for one second at most.
[[nodiscard]] bool isPortalThere();

// A menu of the apps that can open a file.
class PortalMenu {
 public:
  PortalMenu() = default;
  PortalMenu(const PortalMenu&) = delete;
  PortalMenu& operator=(const PortalMenu&) = delete;
  virtual ~PortalMenu() = default;

  // Waits until the portal has taken the request, which it does before an app is chosen: std::nullopt. Else why the
  // menu is not shown, at the latest when the time that it was given is over; it will not be shown later then.
  // On the thread of MainLoop.h, which cannot wait, std::nullopt at once; what goes wrong is an outcome.
  [[nodiscard]] virtual std::optional<std::string> awaitRefusal() = 0;

  // Takes the menu back. Without effect on one that has come to its end.
  virtual void withdraw() noexcept = 0;
};

// Asks for a menu over the window. The outcome of one that is shown goes to the handler, unless that is empty.
[[nodiscard]] std::shared_ptr<PortalMenu> openInMenu(FileDescriptor file, const std::string& parentWindow,
                                                     std::chrono::milliseconds patience, const MenuHandler& handler);

}  // namespace tavlo::linux_platform
