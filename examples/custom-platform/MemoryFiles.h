// MemoryFiles: a file layer that lives in memory. Any thread may use it, any time.
#pragma once

#include <platform/FileManager.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class MemoryFiles final : public tavlo::platform::FileManager {
  using Text = tavlo::Text;
  using Result = tavlo::platform::FileResult;
  using Existence = tavlo::platform::Existence;

 public:
  Text documentDirectory() override { return "/Documents"; }

  Existence fileExistsAtPathIsDirectory(const Text& path) override {
    const std::lock_guard lock(mutex_);
    return existence(path.value_or(""));
  }

  Result removeItemAtPath(const Text& path, tavlo::platform::Removal removal) override {
    const std::lock_guard lock(mutex_);
    const std::string item = path.value_or("");
    const Existence found = existence(item);
    if (found == Existence::missing) return Result::failure("there is no " + item);
    if (found == Existence::directory && removal == tavlo::platform::Removal::fileOnly) {
      return Result::failure(item + " is a directory");
    }
    std::erase_if(items_, [&](const auto& each) { return each.first == item || each.first.starts_with(item + '/'); });
    return Result::success();
  }

  Result createDirectoryAtPath(const Text& path) override { return put(path.value_or(""), std::nullopt); }

  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override {
    const std::lock_guard lock(mutex_);
    if (existence(path.value_or("")) != Existence::directory) return std::nullopt;
    std::vector<std::string> names;
    for (const auto& [item, contents] : items_) {
      if (folderOf(item) == *path) names.push_back(item.substr(path->size() + 1));
    }
    return names;
  }

  std::optional<std::string> dataWithContentsOfFile(const Text& path) override {
    const std::lock_guard lock(mutex_);
    const auto found = items_.find(path.value_or(""));
    return found == items_.end() ? std::nullopt : found->second;
  }

  Result writeToFileAtomically(std::string_view bytes, const Text& path, tavlo::platform::Durable) override {
    return put(path.value_or(""), std::string(bytes));
  }

 private:
  static std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
  }

  [[nodiscard]] Existence existence(const std::string& path) const {
    const auto found = items_.find(path);
    if (found == items_.end()) return Existence::missing;
    return found->second ? Existence::file : Existence::directory;
  }

  // Bytes take the place of a file, a directory that of nothing.
  Result put(const std::string& path, std::optional<std::string> contents) {
    const std::lock_guard lock(mutex_);
    if (existence(folderOf(path)) != Existence::directory) return Result::failure("there is no folder for " + path);
    const Existence found = existence(path);
    if (found == Existence::directory || (found == Existence::file && !contents)) {
      return Result::failure(path + " is there already");
    }
    items_[path] = std::move(contents);
    return Result::success();
  }

  std::mutex mutex_;
  std::map<std::string, std::optional<std::string>> items_{{"/Documents", std::nullopt}};  // directories have no bytes
};
