// What the runner itself must do: see every difference, and say what it saw.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>

#include "tests/conformance/CaseRun.h"
#include "tests/conformance/Given.h"
#include "tests/conformance/Json.h"

namespace tavlo::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

Case caseOf(std::string_view json) { return {.file = "sample", .name = "Case", .content = parsed(json).value()}; }

std::vector<Case> allCases() { return casesIn(std::string(TAVLO_SOURCE_DIR) + "/conformance"); }

TEST(ConformanceRunner, DifferenceSaysCaseStepExpectedAndGot) {
  const Case wrong =
      caseOf(R"({"steps": [{"call": "md5", "with": "a"}, {"call": "md5", "with": "abc", "gives": "9"}]})");

  EXPECT_THAT(differences(wrong), ElementsAre("sample: Case, step 2: gives\n"
                                              "  expected: \"9\"\n"
                                              "  got:      \"900150983cd24fb0d6963f7d28e17f72\""));
}

TEST(ConformanceRunner, LineThatNobodyExpectedIsADifference) {
  const Case silent = caseOf(R"({"given": {"files": {"TavloCache/": null}},
                                 "steps": [{"call": "getDocumentDirectoryPath", "with": "a"}]})");

  EXPECT_THAT(differences(silent),
              ElementsAre("sample: Case, step 1: log\n"
                          "  expected: []\n"
                          "  got:      [\"Cached directory path : /app/Documents/TavloCache/a\"]"));
}

TEST(ConformanceRunner, FailureThatNobodyExpectedIsADifference) {
  const Case wrong = caseOf(R"({"given": {"files": {"TavloCache/VideoListAPI": "x"}},
                                "steps": [{"call": "getCachedVideoList", "with": true,
                                           "log": ["Cached directory path : ${any}"]}]})");

  const auto found = differences(wrong);

  ASSERT_EQ(found.size(), 1U);
  EXPECT_THAT(found.front(), testing::StartsWith("sample: Case, step 1: raises\n  expected: false\n  got:      \""));
}

TEST(ConformanceRunner, StepThatCannotBeRunIsADifference) {
  EXPECT_THAT(differences(caseOf(R"({"steps": [{"call": "md4"}]})")), Not(IsEmpty()));
  EXPECT_THAT(differences(caseOf(R"({"steps": [{"do": "nothing"}]})")), Not(IsEmpty()));
  EXPECT_THAT(differences(caseOf(R"({"steps": [{"call": "clearCache", "logs": []}]})")), Not(IsEmpty()));
  EXPECT_THAT(differences(caseOf(R"({"steps": []})")), ElementsAre("sample: Case: there are no steps"));
}

TEST(ConformanceRunner, EveryFileHasCasesWithNamesOfTheirOwn) {
  std::set<std::string> files;
  std::set<std::string> names;
  for (const Case& one : allCases()) {
    files.insert(one.file);
    EXPECT_TRUE(names.insert(one.file + "." + one.name).second) << one.file << ": two cases are named " << one.name;
  }

  EXPECT_THAT(files, ElementsAre("ad-request", "banner-images", "cache-lists", "cache-names", "cache-paths",
                                 "identifiers", "in-app-request", "location", "log-export", "md5", "resources",
                                 "sorting", "tracker", "url-encode", "url-extension", "user-fragment"));
  EXPECT_GE(names.size(), 390U);
}

TEST(ConformanceRunner, EveryOperationIsCalled) {
  std::set<std::string> called;
  for (const Case& one : allCases()) {
    for (const Value& step : itemsOf(member(one.content, "steps"))) {
      if (const Text operation = textOf(member(step, "call"))) called.insert(*operation);
    }
  }

  EXPECT_EQ(called.size(), 28U);  // those of TavloUtility, and urlEncode
}

// What is not what the case says: another text, a line more, a truth value turned round.
Value changed(const Value& expected) {
  if (const bool* const truth = expected.ifBoolean()) return !*truth;
  if (const ValueList* const items = expected.ifList()) {
    ValueList more = *items;
    more.emplace_back("one more");
    return Value::list(std::move(more));
  }
  if (expected.ifMap() && !member(expected, "$json")) {
    ValueMap more = *expected.ifMap();
    more.set("one more", "more");
    return Value::map(std::move(more));
  }
  return "something else";
}

Case withStep(const Case& one, std::size_t number, const std::string& name, const Value& value) {
  ValueList steps = itemsOf(member(one.content, "steps"));
  ValueMap step = *steps.at(number).ifMap();
  step.set(Value(name), value);
  steps.at(number) = Value::map(std::move(step));
  ValueMap content = *one.content.ifMap();
  content.set("steps", Value::list(std::move(steps)));
  return {.file = one.file, .name = one.name, .content = Value::map(std::move(content))};
}

TEST(ConformanceRunner, EveryExpectationOfEveryCaseCounts) {
  constexpr auto kExpectations = std::to_array<const char*>(
      {"gives", "raises", "log", "console", "reports", "menus", "asks", "files", "settings", "package"});
  int count = 0;
  for (const Case& one : allCases()) {
    const ValueList& steps = itemsOf(member(one.content, "steps"));
    for (std::size_t number = 0; number < steps.size(); ++number) {
      const bool isSet = textOf(member(steps[number], "do")) == "set";
      for (const char* const name : kExpectations) {
        const Value* const expected = member(steps[number], name);
        if (!expected || (isSet && std::string_view(name) == "package")) continue;
        ++count;
        EXPECT_THAT(differences(withStep(one, number, name, changed(*expected))), Not(IsEmpty()))
            << one.file << ": " << one.name << ", step " << number + 1 << ": " << name;
      }
    }
  }

  EXPECT_GE(count, 960);
}

}  // namespace
}  // namespace tavlo::conformance
