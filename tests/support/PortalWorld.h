// A desktop of a test's own: a session bus, the real desktop portal, and a chooser of apps that the test answers for
// (tests/support/portal_world.py). This process uses its bus from then on. Not for several at once.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/ChildScript.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class PortalWorld {
 public:
  // "whole", "no-chooser", "no-portal" or "deaf", as the script has it.
  explicit PortalWorld(const std::string& kind) : script_("portal_world.py", {folder_.path().string(), kind}) {
    const std::string address = next();
    if (!address.starts_with("unix:")) throw std::runtime_error("the script says " + address);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  }

  // Debian's own Python with the modules for the bus, the bus and the portal.
  [[nodiscard]] static bool isInstalled() {
    return std::system(
               "/usr/bin/python3 -c 'import dbus, gi' 2>/dev/null && command -v dbus-daemon >/dev/null && "
               "test -x /usr/libexec/xdg-desktop-portal") == 0;
  }

  // The next thing that happens, once it does: "asked PARENT URI", "closed", "opened PATH".
  [[nodiscard]] std::string next() { return script_.readLine(); }

  // Answers for the chooser, or ends a part: "choose", "cancel", "fail", "end portal", "end bus".
  void tell(const std::string& line) { script_.say(line); }

  // Ends all of it; what happened that next() was not asked for.
  [[nodiscard]] std::vector<std::string> end() {
    tell("end all");
    std::vector<std::string> rest;
    for (std::string line = next(); line != "ended"; line = next()) rest.push_back(line);
    return rest;
  }

 private:
  TemporaryFolder folder_;
  ChildScript script_;
};

}  // namespace tavlo::test
