#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "host/FixedPosition.h"
#include "host/SessionRecord.h"
#include "platform/Platform.h"

namespace tavlo::host {
namespace {

using platform::Location;
using testing::Optional;

constexpr platform::Coordinate kPlace{.latitude = -33.8688, .longitude = 151.2093};

TEST(FixedPosition, IsAllowedAndKnownAtOnce) {
  FixedPosition position(kPlace);

  const auto manager = position.makeLocationManager();

  EXPECT_TRUE(position.locationServicesEnabled());
  EXPECT_EQ(position.authorizationStatus(), 3);
  EXPECT_THAT(manager->location(), Optional(Location{kPlace}));
}

TEST(FixedPosition, AManagerKnowsItWhenTheServicesAreGone) {
  auto position = std::make_unique<FixedPosition>(kPlace);
  const auto manager = position->makeLocationManager();

  position = nullptr;

  EXPECT_THAT(manager->location(), Optional(Location{kPlace}));
}

TEST(FixedPosition, AnswersBeforeTheCallReturns) {
  FixedPosition position(kPlace);
  std::vector<std::int32_t> statuses;
  std::vector<std::optional<Location>> fixes;

  position.requestAuthorization([&](std::int32_t status) { statuses.push_back(status); });
  position.requestLocation([&](const std::optional<Location>& fix) { fixes.push_back(fix); });

  EXPECT_THAT(statuses, testing::ElementsAre(3));
  EXPECT_THAT(fixes, testing::ElementsAre(Location{kPlace}));
}

TEST(FixedPosition, AnEmptyHandlerIsNotTold) {
  FixedPosition position(kPlace);

  EXPECT_NO_THROW(position.requestAuthorization(nullptr));
  EXPECT_NO_THROW(position.requestLocation(nullptr));
}

class FixedPlatform final : public platform::Platform {
 public:
  platform::LocationServices& locationServices() override { return position_; }

 private:
  FixedPosition position_{kPlace};
};

TEST(FixedPosition, AFetchPutsItIntoTheSession) {
  const auto session = std::make_shared<SessionRecord>();
  TavloPackage::install(session);
  platform::install(std::make_shared<FixedPlatform>());

  TavloUtility::fetchCurrentLocation();

  platform::install(nullptr);
  TavloPackage::install(nullptr);
  EXPECT_EQ(session->getLatitude(), "-33.868800");
  EXPECT_EQ(session->getLongitude(), "151.209300");
}

}  // namespace
}  // namespace tavlo::host
