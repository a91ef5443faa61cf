#include "tests/support/TemporaryFolder.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tavlo::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() : TemporaryFolder(fs::temp_directory_path()) {}

TemporaryFolder::TemporaryFolder(const fs::path& above) {
  std::string name = (above / "tavlo-test-XXXXXX").string();
  if (!::mkdtemp(name.data())) throw std::runtime_error("cannot make a temporary folder like " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::inMemory() {
  constexpr const char* kInMemory = "/dev/shm";
  return ::access(kInMemory, W_OK | X_OK) == 0 ? fs::path(kInMemory) : fs::temp_directory_path();
}

std::string readFile(const fs::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace tavlo::test
