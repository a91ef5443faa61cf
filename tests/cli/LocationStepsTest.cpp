#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cli/LocationSteps.h"
#include "tests/support/CaseName.h"

namespace tavlo::cli {
namespace {

using platform::Location;
using platform::Placemark;
using platform::Placemarks;
using Lines = std::vector<std::string>;

constexpr Location kSomewhere{{.latitude = 1.5, .longitude = -2}};

Lines linesOf(const LocationReport& report) {
  Lines lines;
  for (const auto& [step, what] : locationSteps(report, false))
    lines.push_back(std::string(step).append(": ").append(what));
  return lines;
}

LocationReport allowed() {
  LocationReport report;
  report.enabled = true;
  report.status = 4;
  return report;
}

LocationReport lookedUp() {
  LocationReport report = allowed();
  report.positions = {std::nullopt, kSomewhere};
  report.isLookedUp = true;
  return report;
}

TEST(LocationSteps, EndWhereTheServicesAreOff) { EXPECT_EQ(linesOf({}), Lines{"services: off; nothing is fetched"}); }

struct StatusCase {
  const char* name;
  std::int32_t status;
  const char* step;
  const char* why;
};

class LocationStepsOfStatus : public testing::TestWithParam<StatusCase> {};

TEST_P(LocationStepsOfStatus, TellWhatThePermissionMeansAndWhatToDo) {
  LocationReport report;
  report.enabled = true;
  report.status = GetParam().status;

  EXPECT_EQ(linesOf(report), (Lines{"services: on", GetParam().step}));
  EXPECT_EQ(whyNoPosition(report), GetParam().why);
}

INSTANTIATE_TEST_SUITE_P(
    Statuses, LocationStepsOfStatus,
    testing::Values(
        StatusCase{"NotDetermined", 0, "permission: 0: nobody was asked yet; nothing is fetched",
                   "the permission is 0, nobody was asked yet; --wait asks for it, or give a position with --fixed "
                   "LAT,LON"},
        StatusCase{
            "Restricted", 1, "permission: 1: the system gives apps no position; nothing is fetched",
            "the permission is 1, the system gives apps no position; allow it in the desktop's privacy settings, "
            "or give a position with --fixed LAT,LON"},
        StatusCase{"Denied", 2, "permission: 2: refused to this app; nothing is fetched",
                   "the permission is 2, refused to this app; allow it in the desktop's privacy settings, or give a "
                   "position with --fixed LAT,LON"},
        StatusCase{"Unknown", 77, "permission: 77: no number that is known; nothing is fetched",
                   "the permission is 77, no number that is known; check the platform, or give a position with --fixed "
                   "LAT,LON"}),
    test::kCaseName);

TEST(LocationSteps, PermissionThatWasAskedForInVainHasAnotherRemedy) {
  LocationReport report;
  report.enabled = true;
  report.isAsked = true;
  report.status = 0;

  EXPECT_EQ(linesOf(report),
            (Lines{"services: on", "permission: 0: nobody answered when it was asked for; nothing is fetched"}));
  EXPECT_EQ(whyNoPosition(report),
            "the permission is 0, nobody answered when it was asked for; check that the position service and the agent "
            "that asks the user run, or give a position with --fixed LAT,LON");
}

TEST(LocationSteps, PositionThatIsNotKnownYetIsStoredAsZeros) {
  EXPECT_EQ(linesOf(lookedUp()),
            (Lines{"services: on", "permission: 4: allowed while the app is in use",
                   "position: none yet, which is stored as 0.000000, 0.000000",
                   "look-up: of the position as read again: 1.500000, -2.000000", "answer: none yet"}));
}

struct AnswerCase {
  const char* name;
  bool isAnswered;
  std::optional<Placemarks> placemarks;
  Text error;
  Lines steps;  // from the answer on
};

void PrintTo(const AnswerCase& row, std::ostream* stream) { *stream << row.name; }

class LocationStepsOfAnswer : public testing::TestWithParam<AnswerCase> {};

TEST_P(LocationStepsOfAnswer, TellWhatBecameOfIt) {
  LocationReport report = lookedUp();
  report.isOver = true;
  report.isAnswered = GetParam().isAnswered;
  report.placemarks = GetParam().placemarks;
  report.error = GetParam().error;

  Lines steps = linesOf(report);
  steps.erase(steps.begin(), steps.begin() + 4);

  EXPECT_EQ(steps, GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, LocationStepsOfAnswer,
    testing::Values(
        AnswerCase{"Dropped", false, {}, {}, {"answer: none, and none will come"}},
        AnswerCase{"Error", true, {}, "no\nnet", {"answer: an error, so the address stays empty: no\\nnet"}},
        AnswerCase{"NoList", true, {}, {}, {"answer: no list, so the address is an empty object"}},
        AnswerCase{"EmptyList",
                   true,
                   Placemarks{},
                   {},
                   {"answer: an empty list, which ends the handler; the address stays empty"}},
        AnswerCase{"Two",
                   true,
                   Placemarks{Placemark{"IS\x1b", {}, {}, "\"s\"", "c", "l", "t"}, Placemark{}},
                   {},
                   {"answer: 2 placemarks, of which the first counts", R"(key state: "\"s\"" from administrativeArea)",
                    R"(key locality: "l" from subLocality)", R"(key area: "t" from thoroughfare)",
                    "key pin: postalCode is not known, so the key is left out", R"(key city: "c" from locality)",
                    "key country: country is not known, so the key is left out",
                    R"(no key: "IS\u{1b}" of ISOcountryCode is only logged)"}}),
    test::kCaseName);

}  // namespace
}  // namespace tavlo::cli
