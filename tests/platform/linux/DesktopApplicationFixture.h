// A file to offer to other apps, no session bus to do it by, and a record of what became of it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "platform/linux/DesktopApplication.h"
#include "tests/platform/linux/AwaitedOutcomes.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

inline constexpr std::chrono::minutes kForEver{1};

class Window final : public platform::View {
 public:
  explicit Window(Text handle) : handle_(std::move(handle)) {}
  Text windowHandle() const override { return handle_; }

 private:
  const Text handle_;
};

class DesktopApplicationTest : public testing::Test {
 protected:
  DesktopApplicationTest() {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::unsetenv("XDG_RUNTIME_DIR");
    writeFile(folder_ / "log.txt", "a line\n");
  }

  [[nodiscard]] std::string url(const std::string& name = "log.txt") const { return "file://" + at(name); }
  [[nodiscard]] std::string at(const std::string& name) const { return (folder_ / name).string(); }

  [[nodiscard]] auto controller(const std::string& url, std::chrono::milliseconds patience = kForEver) const {
    return linux_platform::DesktopApplication(outcomes_.handler(), patience).interactionControllerWithURL(url);
  }
  static bool present(platform::DocumentInteractionController& controller, Text window = std::nullopt) {
    return controller.presentOpenInMenuFromRect({}, std::make_shared<Window>(std::move(window)), true);
  }

  TemporaryFolder folder_;
  AwaitedOutcomes outcomes_;
};

}  // namespace tavlo::test
