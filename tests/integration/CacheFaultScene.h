// A media cache whose system calls can be made to fail, and the lines that are logged.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/LinuxFileManager.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/CacheWorlds.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/RecordingPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

// Files through the faulty calls; tasks run at once; every URL has the same body.
class FaultyPlatform final : public platform::Platform, platform::BackgroundQueue, platform::UrlData {
 public:
  static constexpr const char* kBody = "the new image";

  FaultyPlatform(const std::filesystem::path& container, linux_platform::Syscalls& syscalls)
      : files_(*linux_platform::Container::locate(container, "player"), syscalls) {}

  platform::FileManager& fileManager() override { return files_; }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return *this; }

 private:
  void dispatchAsync(std::function<void()> task) override { task(); }
  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override { return kBody; }

  linux_platform::LinuxFileManager files_;
};

struct CacheFaultScene {
  CacheFaultScene() { start(); }

  // With files that know of no earlier call, as those of an app that has just been started.
  void start() {
    platform.emplace(folder.path(), syscalls);
    static_cast<void>((*platform)->fileManager().documentDirectory());
    syscalls.forget();
  }

  [[nodiscard]] std::string documents() const { return (folder / "Documents").string(); }
  [[nodiscard]] std::filesystem::path cache(const std::string& name = "") const {
    return folder / ("Documents/TavloCache" + name);
  }
  void put(const std::vector<std::string>& names) const {
    std::filesystem::remove_all(cache());
    std::filesystem::create_directory(cache());
    for (const std::string& name : names) {
      std::filesystem::create_directories((cache("/") / name).parent_path());
      writeFile(cache("/") / name, "old");
    }
  }
  [[nodiscard]] std::string left() const {
    std::string names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(cache()))
      names += entry.path().filename().string() + " ";
    return names;
  }
  [[nodiscard]] bool hasTemporaries() const {
    return std::filesystem::exists(folder / "tmp") && !std::filesystem::is_empty(folder / "tmp");
  }

  // The answer, and then the lines.
  [[nodiscard]] std::vector<std::string> told(const std::string& answer) {
    std::vector<std::string> told{answer};
    for (const std::string& line : std::exchange(lines->lines, {})) told.push_back(line);
    for (std::string& text : told) text = withoutPlace(text, documents());
    return told;
  }

  TemporaryFolder folder{TemporaryFolder::inMemory()};
  FaultySyscalls syscalls{folder.path().string()};
  std::optional<InstalledPlatform<FaultyPlatform>> platform;
  Installed<Logger, RecordingLogger> lines;
};

}  // namespace tavlo::test
