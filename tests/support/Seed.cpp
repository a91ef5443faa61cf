#include "tests/support/Seed.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

constexpr std::uint64_t kUsualSeed = 20010101;

bool askedFor = false;

std::uint64_t chosen() {
  if (const char* const given = std::getenv("TAVLO_TEST_SEED")) return std::strtoull(given, nullptr, 10);
  return atFullFigures() ? std::random_device{}() : kUsualSeed;
}

std::uint64_t once() {
  static const std::uint64_t seed = chosen();
  return seed;
}

class Printer final : public testing::EmptyTestEventListener {
 public:
  explicit Printer(std::string program) : program_(std::move(program)) {}

 private:
  void OnTestStart(const testing::TestInfo&) override { askedFor = false; }

  void OnTestEnd(const testing::TestInfo& test) override {
    if (!askedFor || test.result()->Passed() || test.result()->Skipped()) return;
    std::cout << "Once more: " << program_ << " --gtest_filter=" << test.test_suite_name() << '.' << test.name()
              << " --seed=" << once() << (atFullFigures() ? " --full" : "") << std::endl;
  }

  std::string program_;
};

}  // namespace

std::uint64_t seed() {
  if (!askedFor) std::cout << "seed " << once() << std::endl;
  askedFor = true;
  return once();
}

void printCommandOfFailedTests(const char* program) {
  testing::UnitTest::GetInstance()->listeners().Append(new Printer(program));
}

}  // namespace tavlo::test
