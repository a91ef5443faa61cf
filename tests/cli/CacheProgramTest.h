// Runs `tavlo cache` on a container of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {

class CacheProgramTest : public testing::Test {
 protected:
  [[nodiscard]] Result cache(std::vector<std::string> arguments, Setting setting = {}) const {
    arguments.insert(arguments.begin(), "cache");
    setting.environment["TAVLO_CONTAINER"] = container();
    return run(arguments, setting);
  }

  [[nodiscard]] std::string container() const { return (folder_ / "c").string(); }
  [[nodiscard]] std::string path(const std::string& name) const { return directory() + "/" + name; }
  [[nodiscard]] std::string directory() const { return container() + "/Documents/TavloCache"; }

  void put(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(directory());
    tavlo::test::writeFile(path(name), bytes);
  }
  [[nodiscard]] std::string contents(const std::string& name) const { return tavlo::test::readFile(path(name)); }

  // What lies in the cache directory, sorted.
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(directory())) found.push_back(entry.path().filename());
    std::sort(found.begin(), found.end());
    return found;
  }

  // The lines of the log file, without their times.
  [[nodiscard]] std::vector<std::string> log() const {
    constexpr std::size_t kTime = 25;  // "2026-11-21T09:30:00.123Z "
    std::vector<std::string> lines;
    std::string text = contents("TavloLogFile.txt");
    for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
      lines.push_back(text.substr(std::min(kTime, end), end - std::min(kTime, end)));
    }
    return lines;
  }

  [[nodiscard]] static std::string fixture(const std::string& name) {
    return tavlo::test::readFile(std::string(TAVLO_SOURCE_DIR) + "/tests/fixtures/archives/" + name);
  }

  const tavlo::test::TemporaryFolder folder_;
};

}  // namespace tavlo::cli::test
