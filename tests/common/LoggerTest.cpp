#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/Logger.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

TEST(LoggerTest, HandsEachMessageToTheInstalledLoggerUnchanged) {
  const test::Installed<Logger, test::RecordingLogger> logger;

  Logger::printLog("a %@ line");
  Logger::printLog("");

  EXPECT_THAT(logger->lines, testing::ElementsAre("a %@ line", ""));
}

TEST(LoggerTest, DropsMessagesWhileNoneIsInstalled) {
  Logger::install(nullptr);

  EXPECT_NO_THROW(Logger::printLog("dropped"));
  EXPECT_EQ(Logger::installed(), nullptr);
}

}  // namespace
}  // namespace tavlo
