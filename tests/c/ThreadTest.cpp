#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "tests/c/Tables.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::test {
namespace {

// One counter a table: how often it was used after it had been released.
struct User {
  std::atomic<bool> released = false;
  static inline std::atomic<int> alive = 0;
  static inline std::atomic<int> usedTooLate = 0;
};

tavlo_package packageOf(User* user) {
  auto package = table<tavlo_package>();
  package.user = user;
  package.text = [](void* self, tavlo_package_text, tavlo_answer* answer) {
    if (static_cast<User*>(self)->released) ++User::usedTooLate;
    EXPECT_EQ(tavlo_answer_text(answer, tavlo_text_of("v")), TAVLO_OK);
  };
  package.released = [](void* self) {
    static_cast<User*>(self)->released = true;
    --User::alive;
    delete static_cast<User*>(self);
  };
  return package;
}

TEST(CThread, TablesAreReplacedWhileOthersReadThem) {
  const int rounds = figure(200, 5000);
  tavlo_package_install(nullptr);

  onThreadsAtOnce(4, [&](int thread) {
    for (int round = 0; round < rounds; ++round) {
      if (thread == 0) {
        ++User::alive;
        const auto package = packageOf(new User);
        ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);
      } else {
        const std::string query = textOf(tavlo_getAdditionalRequestingString, nullptr);
        ASSERT_TRUE(query.starts_with("appId=v&") || query.starts_with("appId=(null)&")) << query;
      }
    }
  });
  tavlo_package_install(nullptr);

  EXPECT_EQ(User::usedTooLate, 0);
  EXPECT_EQ(User::alive, 0);
}

TEST(CThread, EachHasItsOwnLatestError) {
  onThreadsAtOnce(4, [&](int thread) {
    for (int round = 0; round < 200; ++round) {
      if (thread % 2 == 0) {
        ASSERT_EQ(tavlo_getUserInfoRequestString(nullptr), TAVLO_MISUSE);
        ASSERT_STREQ(tavlo_last_error(), "tavlo_getUserInfoRequestString: the result must not be a null pointer");
      } else {
        ASSERT_EQ(tavlo_task_run(nullptr), TAVLO_MISUSE);
        ASSERT_STREQ(tavlo_last_error(), "tavlo_task_run: the task must not be a null pointer");
      }
    }
  });
}

TEST(CThread, OneValueIsReadByAll) {
  const OwnedValue text = textValue("a text that is longer than what fits");
  const tavlo_value* const items = text.get();
  const auto list = owned(tavlo_value_from_list(&items, 1));

  onThreadsAtOnce(4, [&](int) {
    for (int round = 0; round < 200; ++round) {
      const auto copy = owned(tavlo_value_copy(tavlo_value_item(list.get(), 0)));
      ASSERT_EQ(formOf(copy), "a text that is longer than what fits");
    }
  });
}

}  // namespace
}  // namespace tavlo::test
