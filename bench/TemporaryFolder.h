// A folder of a benchmark's own, removed with everything in it at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tavlo::bench {

class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& in = std::filesystem::temp_directory_path()) {
    std::string name = (in / "tavlo-bench-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("cannot make a temporary folder like " + name);
    path_ = name;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tavlo::bench
