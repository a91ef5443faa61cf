// The inputs that are kept for one fuzz target, without a fuzzer: the seeds of its corpus, and each input that ever
// broke a promise, crashed or took too long (tests/fixtures/found).
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "fuzz/Promise.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = TAVLO_SOURCE_DIR;
const fs::path kSeeds = kSource / "fuzz/corpus" / TAVLO_FUZZ_TARGET;
const fs::path kFound = kSource / "tests/fixtures/found" / TAVLO_FUZZ_TARGET;

std::vector<fs::path> filesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<fs::path> keptInputs() {
  std::vector<fs::path> files = filesIn(kSeeds);
  for (const fs::path& file : filesIn(kFound)) files.push_back(file);
  if (const fs::path more = TAVLO_FUZZ_SEEDS; !more.empty()) {
    for (const fs::path& file : filesIn(kSource / more)) files.push_back(file);
  }
  return files;
}

class KeptInput : public testing::TestWithParam<fs::path> {};

TEST_P(KeptInput, BreaksNoPromise) {
  const std::string bytes = readFile(GetParam());
  const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());  // so that tools see one byte too far
  std::copy(bytes.begin(), bytes.end(), exact.get());

  EXPECT_NO_THROW(LLVMFuzzerTestOneInput(exact.get(), bytes.size())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(, KeptInput, testing::ValuesIn(keptInputs()), [](const auto& row) {
  std::string name = row.param.parent_path().filename().string() + "_" + row.param.filename().string();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return (row.param.parent_path() == kFound ? "Found_" : "") + name;
});

TEST(KeptInputs, HoldSeeds) { EXPECT_GE(filesIn(kSeeds).size(), 6U) << kSeeds; }

}  // namespace
}  // namespace tavlo::test
