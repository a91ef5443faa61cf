// The cache's scenarios on real files: the world of tests/support/CacheWorlds.h over a temporary container.
#pragma once

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/AwaitedLogger.h"
#include "tests/support/CacheWorlds.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class RealWorld {
 public:
  RealWorld() {
    platform::install(linux_platform::make({.container = folder_.path(), .domain = "player", .quietConsole = true}));
    Logger::install(logger_);
    std::filesystem::create_directory(documents());
  }
  RealWorld(const RealWorld&) = delete;
  RealWorld& operator=(const RealWorld&) = delete;
  ~RealWorld() {
    platform::install(nullptr);
    Logger::install(nullptr);
  }

  [[nodiscard]] std::string documents() const { return (folder_ / "Documents").string(); }
  [[nodiscard]] std::string place(const std::string& name) const { return documents() + "/" + name; }

  void putFolder(const std::string& name) { std::filesystem::create_directory(place(name)); }
  void put(const std::string& name, std::string_view bytes) { writeFile(place(name), std::string(bytes)); }
  void remove(const std::string& name) { std::filesystem::remove_all(place(name)); }
  void loseDocuments() {
    std::filesystem::remove_all(documents());
    writeFile(documents(), "squatter");
  }
  [[nodiscard]] std::string bytes(const std::string& name) const {
    return std::filesystem::is_regular_file(place(name)) ? readFile(place(name)) : "(no file)";
  }
  [[nodiscard]] std::vector<std::string> names(const std::string& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? documents() : place(folder))) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  [[nodiscard]] std::vector<std::string> temporaries() const {
    std::vector<std::string> names;
    if (!std::filesystem::exists(folder_ / "tmp")) return names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "tmp")) names.push_back(entry.path());
    return names;
  }

  [[nodiscard]] std::vector<std::string> takeLines() {
    auto lines = logger_->take();
    for (std::string& line : lines) line = withoutPlace(line, documents());
    return lines;
  }

 private:
  TemporaryFolder folder_;
  std::shared_ptr<AwaitedLogger> logger_ = std::make_shared<AwaitedLogger>();
};

}  // namespace tavlo::test
