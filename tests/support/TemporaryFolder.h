// A folder of a test's own, under the system's temporary folder unless another one is given, removed with everything
// in it at the end.
#pragma once

#include <filesystem>
#include <string>

namespace tavlo::test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  explicit TemporaryFolder(const std::filesystem::path& above);
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  // For files that are flushed by the thousand, a folder whose files are in memory; where there is none, the usual one.
  [[nodiscard]] static std::filesystem::path inMemory();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& below) const { return path_ / below; }

 private:
  std::filesystem::path path_;
};

// The whole file, or "" when it cannot be read.
[[nodiscard]] std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& bytes);

}  // namespace tavlo::test
