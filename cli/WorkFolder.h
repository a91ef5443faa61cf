// WorkFolder: a folder of the program's own under the system's temporary folder, removed with everything in it
// at the end.
//
// Throws   Failure when it cannot be made.
#pragma once

#include <string>

namespace tavlo::cli {

class WorkFolder {
 public:
  WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder();

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace tavlo::cli
