// The tree that the tests of removeTree() plant, and what is left of it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/RemoveTree.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class RemoveTree : public testing::Test {
 protected:
  [[nodiscard]] bool remove(const std::filesystem::path& path) { return linux_platform::removeTree(syscalls_, path); }

  // tree/file, tree/empty, tree/sub/file, tree/sub/deep/file
  void plant() {
    std::filesystem::create_directories(folder_ / "tree/sub/deep");
    std::filesystem::create_directory(folder_ / "tree/empty");
    for (const char* const file : {"tree/file", "tree/sub/file", "tree/sub/deep/file"}) writeFile(folder_ / file, "x");
  }
  [[nodiscard]] std::vector<std::string> left() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path())) {
      names.push_back(entry.path().lexically_relative(folder_.path()).string());
    }
    return names;
  }

  TemporaryFolder folder_;
  FaultySyscalls syscalls_{folder_.path().string()};
};

}  // namespace tavlo::test
