#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

// What the example session gives.
constexpr const char* kInApp =
    "app_id=com.example.kino&os_version=17.4&app_version=3.2.1&device_id=6b86b273-ff34-4ce1"
    "&timestamp=2026-11-21 09:30:00&app_bundle_name=Kino%20%26%20Co&sdk_version=4.1.0"
    "&token=tk%2F9f86d081%2B884c7d65%3D&advertisingID=4e074085-62be-db8b-60ce-05c1decfe3ad&limitedTracking=1"
    "&device_type=phone&connection_type=wifi&screen_density_x=460&screen_density_y=460&swidth=1179&sheight=2556"
    "&carrier_name=Köln Mobil & Söhne&screen_density_category=xxhdpi&device_model=Modell%2015%20Gr%C3%B6%C3%9Fe%20M"
    "&language=de-DE&opt_userid=Zo%C3%AB%20%26%20Co&os_id=6b86b273-ff34-4ce1&Page=Start%20%26%20%C3%9Cbersicht"
    "&sessionId=session=5feceb66&n=1\n";
constexpr const char* kUser = "&ru=0&ru_n=&uud=1&uud_n=325&uuw=0&uuw_n=47&uum=0&uum_n=11\n";
constexpr const char* kEventCounts =
    R"("network_event_count":[{"network_id":"network-7","event":"impression","count":3},)"
    R"({"network_id":12,"event":"impression","count":"2"}]})"
    "\n";

constexpr const char* kSortedList =
    R"([{"title":"first","startdate":{"$date":978307210.0}},{"title":"second","startdate":{"$date":978307220.0}},)"
    R"({"title":"third","startdate":{"$date":978307230.0}}])"
    "\nok      its records are sorted by their start dates\n"
    "ok      clearing leaves the log file alone\n"
    "ok      the log has what was stored before\n";

constexpr const char* kPosition =
    "services: on\n"
    "permission: 3: --fixed needs no permission\n"
    "position: 52.518600, 13.408100\n"
    "look-up: of the position as read again: 52.518600, 13.408100\n"
    "answer: one placemark\n"
    "key state: \"Berlin\" from administrativeArea\n"
    "key locality: \"Mitte\" from subLocality\n"
    "key area: thoroughfare is not known, so the key is left out\n"
    "key pin: \"10178\" from postalCode\n"
    "key city: \"Berlin\" from locality\n"
    "key country: \"Deutschland\" from country\n"
    "no key: \"DE\" of ISOcountryCode is only logged\n"
    "ok      the position has six decimals\n"
    "ok      the address is that of the nearest place\n"
    "ok      the ad request carries them\n";

constexpr const char* kImages =
    "              ............\n"
    "ok      the shipped images have 64 x 64 pixels\n"
    "ok      the mute image is another one than the volume image\n";

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) names.push_back(entry.path().lexically_relative(folder).string());
  }
  return names;
}

TEST(DemoTest, ShowsTheRequestsAndHoldsAllItsChecks) {
  const tavlo::test::TemporaryFolder temporary;

  const Result demo = run({"demo"}, {.environment = {{"TMPDIR", temporary.path().string()}}});

  EXPECT_EQ(demo.exitCode, 0);
  EXPECT_EQ(demo.err, "");
  EXPECT_THAT(demo.out, testing::HasSubstr(kInApp));
  EXPECT_THAT(demo.out, testing::HasSubstr(kUser));
  EXPECT_THAT(demo.out, testing::HasSubstr(kEventCounts));
  EXPECT_THAT(demo.out, testing::HasSubstr("\non the console: network-7  impression  3\n"
                                           "on the console: network-7  click  0\n"
                                           "on the console: 12  impression  2\n"));
  EXPECT_THAT(demo.out, testing::HasSubstr("11  mac_address              mac_address              absent "));
  EXPECT_THAT(demo.out, testing::HasSubstr("31  marital_status           maritalStatus            \"\" "));
  EXPECT_THAT(demo.out, testing::HasSubstr("\nok      OptionalId is Zoë & Co\n"));
  EXPECT_THAT(demo.out, testing::ContainsRegex(
                            "\n/banner.png is [0-9a-f]+\nok      the PNG image is found, byte for byte\n"
                            "/banner.gif.size=1 is [0-9a-f]+\nok      the GIF image is found, byte for byte\n"
                            "/banner.bmp is [0-9a-f]+\nok      the BMP image is found, byte for byte\n"
                            "ok      what the server does not have is not stored\n"
                            "ok      a URL with a newline is stored under one name and looked up under another\n"
                            "ok      the video list is read as it was written\n"));
  EXPECT_THAT(demo.out, testing::HasSubstr(kSortedList));
  EXPECT_THAT(demo.out, testing::HasSubstr(kPosition));
  EXPECT_THAT(demo.out, testing::HasSubstr(kImages));
  EXPECT_THAT(demo.out, testing::Not(testing::HasSubstr("FAILED")));
  EXPECT_THAT(demo.out, testing::EndsWith("\nAll 26 checks hold.\n"));
  EXPECT_THAT(namesIn(temporary.path()), testing::IsEmpty());
}

TEST(DemoTest, KeepsItsIdentifiersInAGivenContainerBesideThoseOfTheUser) {
  const tavlo::test::TemporaryFolder folder;
  const std::string container = folder.path().string();
  ASSERT_EQ(run({"id", "set", "app", "mine", "--container", container}).exitCode, 0);

  ASSERT_EQ(run({"demo", "--container", container}).exitCode, 0);

  EXPECT_EQ(run({"id", "get", "app", "--container", container}).out, "mine\n");
  EXPECT_EQ(run({"id", "get", "app", "--container", container, "--domain", "tavlo-demo"}).out, "com.example.kino\n");
}

TEST(DemoTest, CacheOfAContainerThatIsNamedStaysAsItWas) {
  const tavlo::test::TemporaryFolder folder;
  std::filesystem::create_directories(folder / "Documents/TavloCache");
  tavlo::test::writeFile(folder / "Documents/TavloCache/VideoListAPI", "mine");

  ASSERT_EQ(run({"demo", "--container", folder.path().string()}).exitCode, 0);

  EXPECT_EQ(namesIn(folder / "Documents"), std::vector<std::string>{"TavloCache/VideoListAPI"});
  EXPECT_EQ(tavlo::test::readFile(folder / "Documents/TavloCache/VideoListAPI"), "mine");
}

TEST(DemoTest, JsonHasTheRequestsAndTheChecks) {
  const Result demo = run({"demo", "--json"});

  EXPECT_EQ(demo.exitCode, 0);
  EXPECT_THAT(demo.out, testing::StartsWith(R"({"requests":{"ad":"appId=com.example.kino%20%26%20co&)"));
  EXPECT_THAT(demo.out, testing::HasSubstr(R"("user":"&ru=0&ru_n=&uud=1&)"));
  EXPECT_THAT(demo.out, testing::HasSubstr(R"({"claim":"the ad request has 737 characters","holds":true})"));
  EXPECT_EQ(std::count(demo.out.begin(), demo.out.end(), '\n'), 1);
}

TEST(DemoTest, CheckThatDoesNotHoldIsAFailure) {
  const tavlo::test::TemporaryFolder folder;
  const std::string container = (folder / "container").string();
  tavlo::test::writeFile(container, "nothing can be kept here");

  const Result demo = run({"demo", "--container", container});

  // The platform answers from its memory until it is made anew.
  EXPECT_EQ(demo.exitCode, 1);
  EXPECT_THAT(demo.out, testing::HasSubstr("\nFAILED  ApplicationId is com.example.kino\n"));
  EXPECT_EQ(demo.err, "tavlo: 4 of 26 checks of the demo failed; see FAILED in its output\n");
}

TEST(DemoTest, TemporaryFolderThatCannotBeMadeIsAnError) {
  const Result demo = run({"demo"}, {.environment = {{"TMPDIR", "/nowhere/at/all"}}});

  EXPECT_EQ(demo.exitCode, 1);
  EXPECT_THAT(demo.err, testing::StartsWith("tavlo: cannot make a temporary folder: "));
}

TEST(DemoTest, ExampleSessionIsTheFileThatTheDemoUses) {
  const std::string file = std::string(TAVLO_SOURCE_DIR) + "/examples/session.json";

  EXPECT_EQ(run({"request", "in-app", "--session", file}), (Result{0, kInApp, ""}));
  EXPECT_EQ(run({"request", "user", "--session", file}), (Result{0, kUser, ""}));
  EXPECT_THAT(run({"request", "tracker", "--session", file}).out, testing::EndsWith(kEventCounts));
}

}  // namespace
}  // namespace tavlo::cli::test
