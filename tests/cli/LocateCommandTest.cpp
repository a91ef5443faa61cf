#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/ChildProgram.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

using tavlo::test::readFile;
using tavlo::test::writeFile;

constexpr const char* kTable = R"({"places": [
  {"latitude": 52.52, "longitude": 13.405, "ISOcountryCode": "DE", "country": "Germany", "postalCode": "10178",
   "administrativeArea": "Berlin", "locality": "Berlin", "subLocality": "Mitte"},
  {"latitude": -33.8688, "longitude": 151.2093, "locality": "Syd/ney"}
]})";

constexpr const char* kBerlin =
    "position  52.520000, 13.405000\n"
    R"(address   {"state":"Berlin","locality":"Mitte","pin":"10178","city":"Berlin","country":"Germany"})"
    "\n"
    "sent      lat=52.520000\n"
    "sent      long=13.405000\n"
    "sent      address=%7B%22state%22%3A%22Berlin%22%2C%22locality%22%3A%22Mitte%22%2C%22pin%22%3A%2210178%22%2C"
    "%22city%22%3A%22Berlin%22%2C%22country%22%3A%22Germany%22%7D\n";

constexpr const char* kNothing =
    "position  (null), (null)\naddress   (null)\nsent      lat=(null)\nsent      long=(null)\n"
    "sent      address=(null)\n";

constexpr const char* kOff =
    "location services are off; switch location services on, or give a position with --fixed LAT,LON\n";

class LocateTest : public testing::Test {
 protected:
  LocateTest() { writeFile(folder_ / "places.json", kTable); }

  [[nodiscard]] Result locate(std::vector<std::string> arguments, Setting setting = {}) const {
    arguments.insert(arguments.begin(), "locate");
    setting.folder = folder_.path().string();
    setting.environment["TAVLO_CONTAINER"] = (folder_ / "c").string();
    return run(arguments, setting);
  }
  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }

  const tavlo::test::TemporaryFolder folder_;
};

TEST_F(LocateTest, FixedPositionAndTableBecomeAddressAndPairs) {
  const Result located = locate({"--fixed", "52.52,13.405", "--geocoder", "table:places.json"});

  EXPECT_EQ(located, (Result{0, kBerlin,
                             "location authorization: 3\n"
                             "reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
                             "placemarks=Mitte, Berlin, Berlin, 10178, Germany\n"
                             "Current Location\n"
                             "placemark.ISOcountryCode =DE\n"
                             "placemark.country =Germany\n"
                             "placemark.postalCode =10178\n"
                             "placemark.administrativeArea =Berlin\n"
                             "placemark.locality =Berlin\n"
                             "placemark.subLocality =Mitte\n"
                             "placemark.subThoroughfare =(null)\n"}));
}

TEST_F(LocateTest, QuietLeavesTheConsoleLinesOut) {
  EXPECT_EQ(locate({"--fixed", "52.52,13.405", "--geocoder", "table:places.json", "--quiet"}),
            (Result{0, kBerlin, ""}));
}

TEST_F(LocateTest, WaitingFindsTheSame) {
  EXPECT_EQ(locate({"--wait", "--fixed", "52.52,13.405", "--geocoder", "table:places.json", "--quiet"}),
            (Result{0, kBerlin, ""}));
}

TEST_F(LocateTest, WhyTellsHowEachStepWasDecided) {
  const Result located = locate({"--fixed=-33.9,151.2", "--geocoder", "table:places.json", "--why", "--quiet"});

  EXPECT_EQ(located.out,
            "position  -33.900000, 151.200000\n"
            R"(address   {"city":"Syd\/ney"})"
            "\n"
            "sent      lat=-33.900000\n"
            "sent      long=151.200000\n"
            "sent      address=%7B%22city%22%3A%22Syd%5C%2Fney%22%7D\n"
            "\n"
            "step          what\n"
            "services      on\n"
            "permission    3: --fixed needs no permission\n"
            "position      -33.900000, 151.200000\n"
            "look-up       of the position as read again: -33.900000, 151.200000\n"
            "answer        one placemark\n"
            "key state     administrativeArea is not known, so the key is left out\n"
            "key locality  subLocality is not known, so the key is left out\n"
            "key area      thoroughfare is not known, so the key is left out\n"
            "key pin       postalCode is not known, so the key is left out\n"
            "key city      \"Syd/ney\" from locality\n"
            "key country   country is not known, so the key is left out\n");
}

TEST_F(LocateTest, PlaceThatIsTooFarLeavesTheAddressEmpty) {
  const Result located = locate({"--fixed", "0,0", "--geocoder", "table:places.json", "--why"});

  EXPECT_EQ(located,
            (Result{0,
                    "position  0.000000, 0.000000\n"
                    "address   \"\"\n"
                    "sent      lat=0.000000\n"
                    "sent      long=0.000000\n"
                    "sent      address=\n"
                    "\n"
                    "step        what\n"
                    "services    on\n"
                    "permission  3: --fixed needs no permission\n"
                    "position    0.000000, 0.000000\n"
                    "look-up     of the position as read again: 0.000000, 0.000000\n"
                    "answer      an error, so the address stays empty: no place of the table is within 25000 m; "
                    "the nearest is 5972018 m away\n",
                    "location authorization: 3\n"
                    "reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
                    "Geocode failed with error: no place of the table is within 25000 m; the nearest is "
                    "5972018 m away\n"
                    "tavlo: note: the address is empty, since the look-up failed: no place of the table is "
                    "within 25000 m; the nearest is 5972018 m away\n"}));
}

TEST_F(LocateTest, WithoutAGeocoderTheNoteTellsHowToNameOne) {
  const Result located = locate({"--fixed", "1,2"});

  EXPECT_EQ(located.exitCode, 0);
  EXPECT_THAT(located.out, testing::StartsWith("position  1.000000, 2.000000\naddress   \"\"\n"));
  EXPECT_THAT(located.err, testing::EndsWith("\ntavlo: note: the address is empty, since no geocoder is named; "
                                             "--geocoder URL or table:FILE names one\n"));
}

TEST_F(LocateTest, JsonIsASessionFileThatTheRequestTakes) {
  const Result located = locate({"--fixed=-33.8688,151.2093", "--geocoder", "table:places.json", "--json", "--quiet"});

  const Result request = run({"request", "ad", "--session", "-"}, {.input = located.out});

  EXPECT_EQ(
      located.out,
      R"({"package":{"getLatitude":"-33.868800","getLongitude":"151.209300",)"
      R"("getUserAddress":"{\"city\":\"Syd\\/ney\"}"},)"
      R"("about":{"sent":{"lat":"-33.868800","long":"151.209300","address":"%7B%22city%22%3A%22Syd%5C%2Fney%22%7D"}}})"
      "\n");
  EXPECT_THAT(request.out, testing::HasSubstr("&lat=-33.868800&long=151.209300"
                                              "&address=%7B%22city%22%3A%22Syd%5C%2Fney%22%7D&sessionId="));
}

TEST_F(LocateTest, JsonHasTheStepsWhenAsked) {
  const Result located = locate({"--fixed", "0,0", "--geocoder", "table:places.json", "--json", "--why", "--quiet"});

  EXPECT_THAT(located.out, testing::HasSubstr(R"(,"why":[{"step":"services","what":"on"},{"step":"permission",)"
                                              R"("what":"3: --fixed needs no permission"},{"step":"position",)"
                                              R"("what":"0.000000, 0.000000"},)"));
}

TEST_F(LocateTest, SavedPositionIsInTheAdRequest) {
  writeFile(path("s.json"), R"({"package": {"age": "34", "getLatitude": "1"}, "identifiers": {"OptionalId": "u"}})");

  const Result located =
      locate({"--fixed", "52.52,13.405", "--geocoder", "table:places.json", "--quiet", "--save", "s.json"});

  EXPECT_EQ(located, (Result{0, kBerlin, ""}));
  EXPECT_EQ(
      readFile(path("s.json")),
      "{\n"
      "  \"package\": {\n"
      "    \"age\": \"34\",\n"
      "    \"getLatitude\": \"52.520000\",\n"
      "    \"getLongitude\": \"13.405000\",\n"
      R"(    "getUserAddress": "{\"state\":\"Berlin\",\"locality\":\"Mitte\",\"pin\":\"10178\",\"city\":\"Berlin\",)"
      R"(\"country\":\"Germany\"}")"
      "\n"
      "  },\n"
      "  \"identifiers\": {\n"
      "    \"OptionalId\": \"u\"\n"
      "  }\n"
      "}\n");
  EXPECT_THAT(run({"request", "ad", "--session", path("s.json")}).out,
              testing::AllOf(testing::HasSubstr("&age=34&"), testing::HasSubstr("&lat=52.520000&long=13.405000&")));
}

TEST_F(LocateTest, NothingIsMadeInTheContainer) {
  ASSERT_EQ(locate({"--fixed", "52.52,13.405", "--geocoder", "table:places.json"}).exitCode, 0);

  EXPECT_FALSE(std::filesystem::exists(path("c")));
}

TEST_F(LocateTest, TableComesFromStandardInput) {
  EXPECT_EQ(locate({"--fixed", "52.52,13.405", "--geocoder", "table:-", "--quiet"}, {.input = kTable}),
            (Result{0, kBerlin, ""}));
}

// There is no system bus where these run.
TEST_F(LocateTest, WithoutServicesThereIsNoPositionAndThatIsNoFailure) {
  const Setting busless{.environment = {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path("no-bus")}}};

  EXPECT_EQ(locate({}, busless), (Result{0, kNothing, "tavlo: note: " + std::string(kOff)}));
}

TEST_F(LocateTest, WithoutServicesThereIsNothingToWaitForAndNothingToSave) {
  const Setting busless{.environment = {{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path("no-bus")}}};

  EXPECT_EQ(locate({"--wait", "--save", "s.json"}, busless), (Result{1, kNothing, "tavlo: " + std::string(kOff)}));
  EXPECT_FALSE(std::filesystem::exists(path("s.json")));
}

struct WrongUse {
  const char* name;
  std::vector<std::string> arguments;
  int exitCode;
  std::string error;
};

void PrintTo(const WrongUse& row, std::ostream* stream) { *stream << row.name; }

class LocateWrongUse : public LocateTest, public testing::WithParamInterface<WrongUse> {};

TEST_P(LocateWrongUse, IsToldAndNothingIsPrinted) {
  EXPECT_EQ(locate(GetParam().arguments), (Result{GetParam().exitCode, "", "tavlo: " + GetParam().error + "\n"}));
}

std::string noPosition(const std::string& text) {
  return "LAT,LON \"" + text +
         "\" is no position: give degrees from -90 to 90, a comma, and degrees from -180 to 180, like 52.52,13.405; "
         "see tavlo locate --help";
}

INSTANTIATE_TEST_SUITE_P(
    Uses, LocateWrongUse,
    testing::Values(
        WrongUse{"NoComma", {"--fixed", "52.52"}, 2, noPosition("52.52")},
        WrongUse{"EmptyPosition", {"--fixed", ""}, 2, noPosition("")},
        WrongUse{"BeyondThePole", {"--fixed", "90.1,0"}, 2, noPosition("90.1,0")},
        WrongUse{"BeyondTheAntimeridian", {"--fixed", "0,181"}, 2, noPosition("0,181")},
        WrongUse{"NoNumber", {"--fixed", "nan,0"}, 2, noPosition("nan,0")},
        WrongUse{"ThirdPart", {"--fixed", "1,2,3"}, 2, noPosition("1,2,3")},
        WrongUse{"Blank", {"--fixed", "1, 2"}, 2, noPosition("1, 2")},
        WrongUse{"NoGeocoder",
                 {"--geocoder", "nominatim.example.com"},
                 2,
                 "the geocoder \"nominatim.example.com\" is neither an http or https URL nor table:FILE; see tavlo "
                 "locate --help"},
        WrongUse{"TableWithoutAName",
                 {"--geocoder", "table:"},
                 2,
                 "the geocoder \"table:\" is neither an http or https URL nor table:FILE; see tavlo locate --help"},
        WrongUse{
            "NoTime", {"--timeout", "0"}, 2, "SECONDS \"0\" is no integer from 1 to 3600; see tavlo locate --help"},
        WrongUse{
            "SaveToStandardOutput", {"--save", "-"}, 2, "--save takes the name of a file; see tavlo locate --help"},
        WrongUse{"MissingTable",
                 {"--fixed", "1,2", "--geocoder", "table:none.json"},
                 1,
                 "cannot read none.json: No such file or directory; give a file that is there and can be read"}),
    tavlo::test::kCaseName);

}  // namespace
}  // namespace tavlo::cli::test
