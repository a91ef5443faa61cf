#include <gtest/gtest.h>

#include <array>
#include <string>

#include "platform/Platform.h"
#include "tests/c/Tables.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

struct WrongOption {
  const char* name;
  tavlo_text tavlo_platform::*option;
  tavlo_text value;
  const char* error;
};

class CPlatformOption : public ::testing::TestWithParam<WrongOption> {};

TEST_P(CPlatformOption, IsRefusedByNameAndThePlatformBeforeStays) {
  const auto before = platform::current();
  auto platform = table<tavlo_platform>();
  platform.*GetParam().option = GetParam().value;

  EXPECT_EQ(tavlo_platform_install(&platform), TAVLO_MISUSE);

  EXPECT_NE(std::string(tavlo_last_error()).find(GetParam().error), std::string::npos) << tavlo_last_error();
  EXPECT_EQ(platform::current(), before);
}

INSTANTIATE_TEST_SUITE_P(
    All, CPlatformOption,
    ::testing::Values(WrongOption{"Container", &tavlo_platform::container, {"", 0}, "container"},
                      WrongOption{"ContainerWithNul", &tavlo_platform::container, {"/a\0b", 4}, "container"},
                      WrongOption{"Domain", &tavlo_platform::domain, {"a/b", 3}, "domain \"a/b\""},
                      WrongOption{"Resources", &tavlo_platform::resources, {"", 0}, "\"resources\""},
                      WrongOption{"Authorities", &tavlo_platform::certificate_authorities, {"", 0}, "uthorities"},
                      WrongOption{"Geocoding", &tavlo_platform::geocoding_url, {"ftp://h", 7}, "http or https URL"},
                      WrongOption{"NoData",
                                  &tavlo_platform::domain,
                                  {nullptr, 3},
                                  "the data of the domain is a null pointer, but its size is 3"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CPlatform, ATableThatIsNoneIsRefusedAndNoOtherIsReleased) {
  int released = 0;
  auto console = table<tavlo_console>();
  console.user = &released;
  console.released = [](void* user) { ++*static_cast<int*>(user); };
  const tavlo_geocoder geocoder{};
  auto platform = table<tavlo_platform>();
  platform.console = &console;
  platform.geocoder = &geocoder;

  EXPECT_EQ(tavlo_platform_install(&platform), TAVLO_MISUSE);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_platform_install: the size of the tavlo_geocoder is 0; set it to sizeof");
  EXPECT_EQ(released, 0);

  platform.geocoder = nullptr;
  EXPECT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
  EXPECT_EQ(tavlo_platform_install(nullptr), TAVLO_OK);
  EXPECT_EQ(released, 1);
}

TEST(CPlatform, AnEarlierPlatformHasTheLibrarysOwnServices) {
  const TemporaryFolder folder;
  auto platform = table<tavlo_platform>();
  const std::string container = (folder / "c").string();
  platform.size = offsetof(tavlo_platform, domain);
  platform.container = tavlo_text_of(container.c_str());
  platform.domain = tavlo_text_of("a/b");  // beyond its end
  ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);

  EXPECT_EQ(textOf(tavlo_getDocumentDirectoryPath, tavlo_text_of("x")), container + "/Documents/TavloCache/x");
  tavlo_platform_install(nullptr);
}

// Services without callbacks: nothing is known, and nothing hangs.
TEST(CPlatform, ServicesWithoutCallbacksAnswerNothing) {
  const auto location = table<tavlo_location_services>();
  const auto geocoder = table<tavlo_geocoder>();
  const auto application = table<tavlo_application>();
  const auto queue = table<tavlo_background_queue>();
  const auto urls = table<tavlo_url_data>();
  const auto settings = table<tavlo_user_defaults>();
  auto platform = table<tavlo_platform>();
  platform.location_services = &location;
  platform.geocoder = &geocoder;
  platform.application = &application;
  platform.background_queue = &queue;
  platform.url_data = &urls;
  platform.user_defaults = &settings;
  ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
  bool installed = true;

  EXPECT_EQ(tavlo_fetchCurrentLocation(), TAVLO_OK);
  EXPECT_EQ(tavlo_quillmixInstalledOnThisDevice(&installed), TAVLO_OK);
  EXPECT_FALSE(installed);
  EXPECT_EQ(tavlo_cachedBannerImage(tavlo_text_of("http://h/")), TAVLO_OK);
  EXPECT_EQ(tavlo_setAppIdToUserDefault(tavlo_text_of("a")), TAVLO_OK);
  EXPECT_EQ(textOf(tavlo_getAppIdFromUserDefault), "absent");
  std::string error;
  platform::current()->makeGeocoder()->reverseGeocodeLocation(
      std::nullopt, [&](const auto&, const Text& told) { error = told.value_or("none"); });
  EXPECT_EQ(error, "no geocoder is available");
  EXPECT_EQ(platform::current()->urlData().dataWithContentsOfUrl("http://h/"), std::nullopt);
  tavlo_platform_install(nullptr);
}

TEST(CPlatform, PermissionAndPositionAreTheHosts) {
  auto location = table<tavlo_location_services>();
  location.authorizationStatus = [](void*) -> int32_t { return 2; };
  location.location = [](void*, tavlo_coordinate* newest) {
    *newest = {1.5, -2.5};
    return true;
  };
  auto platform = table<tavlo_platform>();
  platform.location_services = &location;
  ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
  int32_t answered = -1;
  std::optional<platform::Location> found;

  EXPECT_EQ(
      tavlo_request_authorization([](void* user, int32_t status) { *static_cast<int32_t*>(user) = status; }, &answered),
      TAVLO_OK);
  platform::current()->locationServices().requestLocation([&](const auto& position) { found = position; });

  EXPECT_EQ(answered, 2);
  EXPECT_EQ(found, (platform::Location{{.latitude = 1.5, .longitude = -2.5}}));
  tavlo_platform_install(nullptr);
}

TEST(CPlatform, AnAnswerOfOtherPlacemarksIsRefusedAndEndsTheRequest) {
  static tavlo_geocode_request* asked = nullptr;
  auto geocoder = table<tavlo_geocoder>();
  geocoder.reverseGeocodeLocation = [](void*, const tavlo_coordinate* position, tavlo_geocode_request* request) {
    EXPECT_EQ(position, nullptr);
    asked = request;
  };
  auto platform = table<tavlo_platform>();
  platform.geocoder = &geocoder;
  ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
  int answers = 0;
  const auto ask = [&] {
    platform::current()->makeGeocoder()->reverseGeocodeLocation(std::nullopt, [&](const auto& list, const auto&) {
      ++answers;
      EXPECT_FALSE(list);
    });
  };
  const std::array<const tavlo_placemark*, 1> none = {nullptr};

  ask();
  EXPECT_EQ(tavlo_geocode_request_answer(asked, none.data(), 1), TAVLO_MISUSE);
  ask();
  EXPECT_EQ(tavlo_geocode_request_answer(asked, nullptr, 1), TAVLO_MISUSE);
  ask();
  EXPECT_EQ(tavlo_geocode_request_answer(asked, nullptr, 0), TAVLO_OK);

  EXPECT_EQ(answers, 1);
  tavlo_platform_install(nullptr);
}

}  // namespace
}  // namespace tavlo::test
