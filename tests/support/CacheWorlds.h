// What the cache's scenarios need of a world to run in: files to prepare and to look at, all named from the
// Documents directory, and the log lines, in which that directory stands as "DOCUMENTS". This one is in memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "tests/support/CachePlatform.h"

namespace tavlo::test {

inline std::string withoutPlace(std::string text, const std::string& documents) {
  for (std::size_t at = text.find(documents); at != std::string::npos; at = text.find(documents)) {
    text.replace(at, documents.size(), "DOCUMENTS");
  }
  return text;
}

class MemoryWorld {
 public:
  MemoryWorld() { platform::install(platform_); }
  MemoryWorld(const MemoryWorld&) = delete;
  MemoryWorld& operator=(const MemoryWorld&) = delete;
  ~MemoryWorld() { platform::install(nullptr); }

  void putFolder(const std::string& name) { platform_->putFolder(name); }
  void put(const std::string& name, std::string_view bytes) { platform_->putFile(name, bytes); }
  void remove(const std::string& name) {
    static_cast<void>(platform_->files().removeItemAtPath(place(name), platform::Removal::anything));
  }
  [[nodiscard]] std::string place(const std::string& name) const { return CachePlatform::path(name); }
  [[nodiscard]] std::string bytes(const std::string& name) { return platform_->bytes(name).value_or("(no file)"); }
  // Sorted; "" is the Documents directory.
  [[nodiscard]] std::vector<std::string> names(const std::string& folder) const {
    return platform_->files().names(folder.empty() ? MemoryFileManager::kDocuments : place(folder));
  }

  // The lines since the last time.
  [[nodiscard]] std::vector<std::string> takeLines() {
    auto lines = platform_->lines();
    for (std::string& line : lines) line = withoutPlace(line, MemoryFileManager::kDocuments);
    platform_->forget();
    return lines;
  }

 private:
  std::shared_ptr<CachePlatform> platform_ = std::make_shared<CachePlatform>();
};

}  // namespace tavlo::test
