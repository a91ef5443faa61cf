// Each allocation of a call fails in turn: the call ends with a status, its result is absent, and nothing is lost.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/c/Tables.h"
#include "tests/support/CaseName.h"
#include "tests/support/FailingAllocations.h"

namespace tavlo::test {
namespace {

struct Call {
  const char* name;
  std::function<tavlo_status()> run;
};

template <class Operation, class... Arguments>
tavlo_status text(const Operation& operation, Arguments... arguments) {
  tavlo_string result{};
  const tavlo_status status = operation(arguments..., &result);
  EXPECT_TRUE(status == TAVLO_OK || result.data == nullptr);
  tavlo_string_free(&result);
  return status;
}

tavlo_status payload() {
  tavlo_value* value = nullptr;
  const tavlo_status status = tavlo_trackerNetworkSessionData(&value);
  EXPECT_EQ(status == TAVLO_OK, value != nullptr);
  tavlo_value_free(value);
  return status;
}

tavlo_status nested() {
  const OwnedValue item = textValue("a text that is longer than what fits");
  const tavlo_value* const items = item.get();
  if (!item) return TAVLO_NO_MEMORY;
  const auto list = owned(tavlo_value_from_list(&items, 1));
  const auto map = owned(tavlo_value_from_map(&items, &items, 1));
  return list && map ? TAVLO_OK : TAVLO_NO_MEMORY;
}

const std::string kLong(200, 'x');
const tavlo_text kText{kLong.data(), kLong.size()};

class COutOfMemory : public ::testing::TestWithParam<Call> {
 protected:
  static void SetUpTestSuite() {
    static const std::string kAnswer(100, 'y');
    auto package = table<tavlo_package>();
    package.text = [](void*, tavlo_package_text, tavlo_answer* answer) {
      static_cast<void>(tavlo_answer_text(answer, {kAnswer.data(), kAnswer.size()}));
    };
    ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);
    auto database = table<tavlo_database_handler>();
    database.getNetworkTrackerDetails = [](void*, tavlo_tracker_records* records) {
      static_cast<void>(tavlo_tracker_records_add(records, nullptr, nullptr, nullptr));
      static_cast<void>(tavlo_tracker_records_add(records, nullptr, nullptr, nullptr));
    };
    ASSERT_EQ(tavlo_database_handler_install(&database), TAVLO_OK);
    auto platform = table<tavlo_platform>();
    const auto console = table<tavlo_console>();
    const auto settings = table<tavlo_user_defaults>();
    platform.console = &console;
    platform.user_defaults = &settings;
    ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
  }
};

TEST_P(COutOfMemory, EndsWithAStatus) {
  int refused = 0;
  for (int allocations = 0;; ++allocations) {
    ASSERT_LT(allocations, 1000);
    OutOfMemory memory(allocations, OutOfMemory::Lasts::once);
    const tavlo_status status = GetParam().run();
    if (!memory.end()) {
      EXPECT_EQ(status, TAVLO_OK) << tavlo_last_error();
      break;
    }
    EXPECT_EQ(status, TAVLO_NO_MEMORY);
    EXPECT_NE(std::string(tavlo_last_error()).find(": no memory left"), std::string::npos);
    ++refused;
  }

  EXPECT_GE(refused, 1);
}

const auto kLogger = table<tavlo_logger>();
const auto kPlatform = table<tavlo_platform>();

INSTANTIATE_TEST_SUITE_P(
    Call, COutOfMemory,
    ::testing::Values(Call{"AdRequest", [] { return text(tavlo_getAdditionalRequestingString, nullptr); }},
                      Call{"InAppRequest", [] { return text(tavlo_getInAppNotificationAdditionalRequest); }},
                      Call{"TrackerPayload", payload},
                      Call{"Extension", [] { return text(tavlo_getFileExtensionFromUrl, kText); }},
                      Call{"UrlEncode", [] { return text(tavlo_url_encode, kText); }},
                      Call{"SetAppId", [] { return tavlo_setAppIdToUserDefault(kText); }}, Call{"Values", nested},
                      Call{"Logger", [] { return tavlo_logger_install(&kLogger); }},
                      Call{"Platform", [] { return tavlo_platform_install(&kPlatform); }}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
