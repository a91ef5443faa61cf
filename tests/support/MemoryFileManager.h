// An in-memory file manager: files and folders in a Documents folder that is there.
// For several threads at once.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"

namespace tavlo::test {

class MemoryFileManager : public platform::FileManager {
 public:
  static constexpr const char* kDocuments = "/app/Documents";

  Text documentDirectory() override { return hasDocuments ? Text(kDocuments) : std::nullopt; }

  platform::Existence fileExistsAtPathIsDirectory(const Text& path) override {
    const std::lock_guard lock(mutex_);
    const Item* const item = path ? find(*path) : nullptr;
    if (!item) return platform::Existence::missing;
    return item->folder ? platform::Existence::directory : platform::Existence::file;
  }

  platform::FileResult removeItemAtPath(const Text& path, platform::Removal removal) override {
    const std::lock_guard lock(mutex_);
    const Item* const item = path ? find(*path) : nullptr;
    if (!item) return failure("No such file or directory", path);
    if (item->folder && removal == platform::Removal::fileOnly) return failure("Is a directory", path);
    const std::string below = *path + '/';
    std::erase_if(items_, [&](const auto& entry) { return entry.first == *path || entry.first.starts_with(below); });
    return platform::FileResult::success();
  }

  platform::FileResult createDirectoryAtPath(const Text& path) override {
    const std::lock_guard lock(mutex_);
    if (!path || !hasFolderAbove(*path)) return failure("No such file or directory", path);
    if (find(*path)) return failure("File exists", path);
    items_[*path] = {.folder = true, .bytes = ""};
    return platform::FileResult::success();
  }

  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override {
    const std::lock_guard lock(mutex_);
    const Item* const item = path ? find(*path) : nullptr;
    if (!item || !item->folder) return std::nullopt;
    return namesIn(*path);
  }

  std::optional<std::string> dataWithContentsOfFile(const Text& path) override {
    const std::lock_guard lock(mutex_);
    const Item* const item = path ? find(*path) : nullptr;
    return item && !item->folder ? std::optional(item->bytes) : std::nullopt;
  }

  platform::FileResult writeToFileAtomically(std::string_view bytes, const Text& path, platform::Durable) override {
    const std::lock_guard lock(mutex_);
    if (!path || !hasFolderAbove(*path)) return failure("No such file or directory", path);
    if (const Item* const item = find(*path); item && item->folder) return failure("Is a directory", path);
    items_[*path] = {.folder = false, .bytes = std::string(bytes)};
    return platform::FileResult::success();
  }

  // The names in a folder, sorted.
  [[nodiscard]] std::vector<std::string> names(const std::string& path) const {
    const std::lock_guard lock(mutex_);
    return namesIn(path);
  }

  bool hasDocuments = true;

 private:
  struct Item {
    bool folder = false;
    std::string bytes;
  };

  static platform::FileResult failure(const std::string& what, const Text& path) {
    return platform::FileResult::failure(what + ": " + path.value_or("(no path)"));
  }
  [[nodiscard]] const Item* find(const std::string& path) const {
    const auto item = items_.find(path);
    return item == items_.end() || path.find('\0') != std::string::npos ? nullptr : &item->second;
  }
  [[nodiscard]] bool hasFolderAbove(const std::string& path) const {
    const std::size_t slash = path.rfind('/');
    const Item* const above = slash == std::string::npos ? nullptr : find(path.substr(0, slash));
    return above && above->folder && slash + 1 < path.size() && path.find('\0') == std::string::npos;
  }
  [[nodiscard]] std::vector<std::string> namesIn(const std::string& path) const {
    std::vector<std::string> names;
    for (const auto& [name, item] : items_) {
      if (name.starts_with(path + '/') && name.find('/', path.size() + 1) == std::string::npos) {
        names.push_back(name.substr(path.size() + 1));
      }
    }
    return names;
  }

  mutable std::mutex mutex_;
  std::map<std::string, Item> items_ = {{kDocuments, {.folder = true, .bytes = ""}}};
};

}  // namespace tavlo::test
