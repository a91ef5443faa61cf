// The Linux platform and the host, installed over one temporary container.
#pragma once

#include <chrono>
#include <memory>

#include "common/TavloException.h"
#include "host/Host.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

// Takes out the platform and all that a host installs.
inline void emptySlots() {
  platform::install(nullptr);
  TavloPackage::install(nullptr);
  TavloUniqueUserHandler::install(nullptr);
  DataBaseHandler::install(nullptr);
  Logger::install(nullptr);
  TavloException::install(nullptr);
}

class RealContainer {
 public:
  RealContainer() { restart(); }
  RealContainer(const RealContainer&) = delete;
  RealContainer& operator=(const RealContainer&) = delete;
  ~RealContainer() { emptySlots(); }

  // A platform and a host of a new process would find what this container holds now.
  void restart() {
    platform::install(linux_platform::make({.container = folder_.path(), .domain = "player", .quietConsole = true}));
    // 2026-11-16 is the 320th day of its year and a Monday, of week 47.
    host_ = std::make_unique<host::Host>(folder_.path(), [] {
      return std::chrono::sys_days(std::chrono::year(2026) / 11 / 16) + std::chrono::hours(9);
    });
  }

  [[nodiscard]] host::Host& host() { return *host_; }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<host::Host> host_;
};

}  // namespace tavlo::test
