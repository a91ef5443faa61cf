// A container in a temporary folder, and what tests of the settings store do with the file in it.
#pragma once

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "common/PropertyList.h"
#include "platform/linux/Container.h"
#include "platform/linux/SettingsStore.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/RecordingPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

struct SettingsFixture {
  TemporaryFolder folder;
  linux_platform::Container container = *linux_platform::Container::locate(folder / "box", "app");
  RecordingPlatform recorder;  // for its console
  FaultySyscalls syscalls{container.folder().string()};

  [[nodiscard]] linux_platform::SettingsStore store(
      std::chrono::milliseconds limit = linux_platform::SettingsStore::kLimit) {
    return linux_platform::SettingsStore(container, recorder.console(), syscalls, limit);
  }

  [[nodiscard]] std::filesystem::path file() const { return container.settingsFile(); }
  [[nodiscard]] std::filesystem::path lockFile() const { return file().string() + ".lock"; }
  [[nodiscard]] std::filesystem::path damagedFile() const { return file().string() + ".damaged"; }
  [[nodiscard]] std::string bytes() const { return readFile(file()); }

  void put(const std::string& contents) const {
    std::filesystem::create_directories(container.preferences());
    writeFile(file(), contents);
  }
  void put(const ValueMap& entries) const { put(*property_list::encode(Value::map(entries))); }

  // The entries that lie in the file; a failure to read them is a value of no map.
  [[nodiscard]] Value entries() const {
    const auto decoded = property_list::decode(bytes());
    return decoded.value.value_or(Value("no property list: " + decoded.error));
  }

  // The files and folders in the container, relative to it, sorted.
  [[nodiscard]] std::vector<std::string> tree() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(container.folder())) {
      names.push_back(entry.path().lexically_relative(container.folder()).string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  [[nodiscard]] std::vector<std::string> temporaries() const {
    std::vector<std::string> names;
    if (!std::filesystem::exists(container.temporary())) return names;
    for (const auto& entry : std::filesystem::directory_iterator(container.temporary())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
};

[[nodiscard]] inline mode_t modeOf(const std::filesystem::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

// Sets and synchronizes; the answer is synchronize()'s.
[[nodiscard]] inline bool store(platform::UserDefaults& defaults, const std::string& key, const Value& value) {
  defaults.setObjectForKey(value, key);
  return defaults.synchronize();
}

}  // namespace tavlo::test
