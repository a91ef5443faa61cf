#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "TavloUtility.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

using test::Installed;
using test::RecordingPackage;

TEST(CollaboratorsTest, TwoCallsOfSharedInstanceReachTheSameRecord) {
  const Installed<TavloPackage, RecordingPackage> package;

  TavloPackage::sharedInstance()->setUserAddress("");
  TavloPackage::sharedInstance()->setLatitudeAndLogitude(" 1.5 ", "-2");

  EXPECT_EQ(TavloPackage::sharedInstance(), TavloPackage::sharedInstance());
  EXPECT_EQ(TavloPackage::sharedInstance()->getUserAddress(), "");
  EXPECT_EQ(TavloPackage::sharedInstance()->getLatitude(), " 1.5 ");
  EXPECT_EQ(TavloPackage::sharedInstance()->getLongitude(), "-2");
}

TEST(CollaboratorsTest, EmptySlotsAnswerNothing) {
  EXPECT_EQ(TavloPackage::sharedInstance(), nullptr);
  EXPECT_EQ(DataBaseHandler::sharedInastance(), nullptr);
  EXPECT_EQ(TavloUniqueUserHandler::installed(), nullptr);
  EXPECT_EQ(TavloException::installed(), nullptr);
}

TEST(CollaboratorsTest, RequestsGoOnWhileEverySlotIsReplaced) {
  std::vector<std::jthread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 200; ++i) {
        if (t % 2 == 0) {
          TavloPackage::install(i % 3 == 0 ? nullptr : std::make_shared<RecordingPackage>());
          TavloUniqueUserHandler::install(i % 3 == 1 ? nullptr : std::make_shared<test::RecordingUsers>());
          DataBaseHandler::install(std::make_shared<test::FixedDataBase>());
          continue;
        }
        EXPECT_EQ(TavloUtility::getUserInfoRequestString(),
                  "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
      }
    });
  }
}

}  // namespace
}  // namespace tavlo
