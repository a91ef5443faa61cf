// The test programs' main(): the framework's options, and two of ours for the random and the large tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>

#include "tests/support/Seed.h"

namespace {

constexpr std::string_view kSeed = "--seed";

int wrong(const std::string& what) {
  std::cerr << what << "\nBeside the options of the test framework there are:\n"
            << "  --seed=N  the seed of random tests, a whole number below 2^64\n"
            << "  --full    as many rounds, threads and bytes as the plan of tests asks for\n";
  return 2;
}

bool isWhole(std::string_view number) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  return error == std::errc() && end == number.data() + number.size();
}

// 0, or the exit status.
int readOptions(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--full") {
      setenv("TAVLO_TEST_FULL", "1", 1);
    } else if (argument == kSeed || argument.starts_with("--seed=")) {
      const bool apart = argument == kSeed;
      const std::string number(apart && i + 1 < count ? arguments[++i] : argument.substr(apart ? 6 : 7));
      if (!isWhole(number)) return wrong("the seed is \"" + number + "\"; give a whole number");
      setenv("TAVLO_TEST_SEED", number.c_str(), 1);
    } else {
      return wrong("no option \"" + std::string(argument) + '"');
    }
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  testing::InitGoogleMock(&count, arguments);
  if (const int status = readOptions(count, arguments)) return status;
  tavlo::test::printCommandOfFailedTests(arguments[0]);
  return RUN_ALL_TESTS();
}
