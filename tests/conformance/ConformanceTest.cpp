// Every case of conformance/, as a test of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>

#include "tests/conformance/CaseRun.h"
#include "tests/conformance/Given.h"

namespace tavlo::conformance {
namespace {

const std::vector<Case>& allCases() {
  static const auto* const cases = new std::vector<Case>(casesIn(std::string(TAVLO_SOURCE_DIR) + "/conformance"));
  return *cases;
}

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all.append(text).append("\n");
  return all;
}

class Conformance : public testing::Test {
 public:
  explicit Conformance(const Case& which) : which_(which) {}
  void TestBody() override { EXPECT_EQ(joined(differences(which_)), ""); }

 private:
  const Case& which_;
};

// "ad-request" is the suite AdRequest.
std::string suiteOf(const std::string& file) {
  std::string suite;
  bool begins = true;
  for (const char c : file) {
    if (c != '-') suite += begins ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
    begins = c == '-';
  }
  return suite;
}

const bool kRegistered = [] {
  for (const Case& one : allCases()) {
    testing::RegisterTest(("Conformance" + suiteOf(one.file)).c_str(), one.name.c_str(), nullptr, nullptr, __FILE__,
                          __LINE__, [&one]() -> testing::Test* { return new Conformance(one); });
  }
  return true;
}();

}  // namespace
}  // namespace tavlo::conformance
