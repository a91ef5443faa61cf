// tavlo locate and tavlo doctor with a geocoding service.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/cli/ChildProgram.h"
#include "tests/support/Nominatim.h"

namespace tavlo::cli::test {
namespace {

using tavlo::test::Nominatim;

Result locate(const std::string& service, std::vector<std::string> options = {}, const Setting& setting = {}) {
  const std::vector<std::string> words{"locate", "--fixed", "28.6139,77.209", "--quiet", "--geocoder", service};
  options.insert(options.begin(), words.begin(), words.end());
  return run(options, setting);
}

TEST(LocateService, AnswersWithTheAddress) {
  Nominatim service;

  const Result located = locate(service.url("good"), {"--contact", "a@example.org"});

  EXPECT_EQ(located.exitCode, 0);
  EXPECT_THAT(located.out,
              testing::StartsWith("position  28.613900, 77.209000\n"
                                  R"(address   {"state":"Delhi","locality":"Connaught Place","area":"Rajpath",)"
                                  R"("pin":"110001","city":"New Delhi","country":"India"})"
                                  "\n"));
  EXPECT_THAT(service.request(), testing::AllOf(testing::StartsWith("GET /good/reverse [TavloUtility (tavlo)] "),
                                                testing::HasSubstr("&email=a%40example.org&")));
}

TEST(LocateService, ThatKnowsNothingLeavesTheAddressEmpty) {
  Nominatim service;

  const Result located = locate(service.url("unable"));

  EXPECT_EQ(located, (Result{0,
                             "position  28.613900, 77.209000\naddress   \"\"\nsent      lat=28.613900\n"
                             "sent      long=77.209000\nsent      address=\n",
                             ""}));
}

TEST(LocateService, ThatDoesNotAnswerIsWaitedForUntilTheTimeIsOver) {
  Nominatim service;

  const Result located = locate(service.url("hold"), {"--timeout", "1"});

  // The geocoder's own limit is the same; which of both comes first is open.
  EXPECT_THAT(located.out, testing::StartsWith("position  28.613900, 77.209000\naddress   \"\"\n"));
  if (located.exitCode != 0) {
    EXPECT_EQ(located.err,
              "tavlo: no sign of the geocoder's answer within 1 second; --timeout SECONDS gives it longer\n");
  }
}

TEST(LocateService, ThatDoesNotAnswerIsInterruptible) {
  Nominatim service;

  const Result located = locate(service.url("hold"), {"--timeout", "3600"}, {.afterStart = [&](int child) {
                                  static_cast<void>(service.request());
                                  ::kill(child, SIGINT);
                                }});

  EXPECT_EQ(located, (Result{1,
                             "position  28.613900, 77.209000\naddress   \"\"\nsent      lat=28.613900\n"
                             "sent      long=77.209000\nsent      address=\n",
                             "tavlo: interrupted before the geocoder's answer; run it again\n"}));
}

TEST(LocateService, UrlThatIsNoBaseIsWrongUse) {
  EXPECT_EQ(
      locate("http://h/?q=1"),
      (Result{2, "",
              "tavlo: the geocoder cannot be used: the option \"geocoding.url\" must be an http or https URL with "
              "a host, without a query or a fragment; see tavlo --help\n"}));
}

TEST(DoctorService, ThatAnswersIsOk) {
  Nominatim service;

  EXPECT_THAT(run({"doctor", "--geocoder", service.url("good")}).out,
              testing::HasSubstr("\nok     geocoder      " + service.url("good") + " answers\n"));
}

TEST(DoctorService, ThatFailsIsBroken) {
  Nominatim service;

  const Result examined = run({"doctor", "--geocoder", service.url("unable")});

  EXPECT_EQ(examined.exitCode, 1);
  EXPECT_THAT(examined.out, testing::ContainsRegex("\nBROKEN  geocoder      " + service.url("unable") +
                                                   " answers with [^\n]+; check the URL and the network\n"));
  EXPECT_EQ(examined.err, "tavlo: broken: geocoder; what to do stands beside each\n");
}

}  // namespace
}  // namespace tavlo::cli::test
