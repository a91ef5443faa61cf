#include "cli/WorkFolder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "cli/Errors.h"

namespace tavlo::cli {

namespace fs = std::filesystem;

WorkFolder::WorkFolder() {
  std::error_code error;
  path_ = (fs::temp_directory_path(error) / "tavlo-XXXXXX").string();
  if (!error && !::mkdtemp(path_.data())) error = std::error_code(errno, std::generic_category());
  if (error) throw Failure("cannot make a temporary folder: " + error.message() + "; set TMPDIR, or give --container");
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace tavlo::cli
