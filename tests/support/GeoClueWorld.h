// The desktop's position daemon on a private bus, with a receiver that is told where it is, for as long as this object
// lives; see geoclue_world.py for its commands.
//
//   GeoClueWorld world;
//   world.run("daemon");
//   world.run("agent");
//   world.run("at 2836.8340,N,07712.5400,E");
//
// While it lives, its bus is the system bus of this process.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "tests/support/ChildScript.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class GeoClueWorld {
 public:
  GeoClueWorld() : script_("geoclue_world.py", {folder_.path().string()}) {
    script_.expect("done");
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + (folder_ / "bus").string()).c_str(), 1);
  }
  GeoClueWorld(const GeoClueWorld&) = delete;
  GeoClueWorld& operator=(const GeoClueWorld&) = delete;
  ~GeoClueWorld() { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

  void run(const std::string& command) {
    if (const std::string answer = ask(command); answer != "done") throw std::runtime_error(command + ": " + answer);
  }
  [[nodiscard]] std::string ask(const std::string& command) {
    script_.say(command);
    return script_.readLine();
  }

 private:
  TemporaryFolder folder_;
  ChildScript script_;
};

}  // namespace tavlo::test
