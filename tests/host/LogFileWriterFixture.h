// A log file writer over a temporary Documents folder, at half past nine.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "host/LogFileWriter.h"
#include "tests/host/Times.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {

inline constexpr auto kHalfPastNine = std::chrono::hours(9) + std::chrono::minutes(30) + std::chrono::milliseconds(123);
inline const std::string kStamp = "2026-11-21T09:30:00.123Z ";

class LogFileWriterTest : public testing::Test {
 protected:
  void SetUp() override { clock.now = test::at(2026, 11, 21, kHalfPastNine); }

  void makeDirectory() const { std::filesystem::create_directory(directory); }
  [[nodiscard]] std::vector<std::string> lines() const { return test::splitLines(test::readFile(file)); }

  const test::TemporaryFolder documents;
  const std::filesystem::path directory = documents / "TavloCache";
  const std::filesystem::path file = directory / "TavloLogFile.txt";
  test::ManualClock clock;
  LogFileWriter writer{documents.path(), clock.clock()};
};

}  // namespace tavlo::host
