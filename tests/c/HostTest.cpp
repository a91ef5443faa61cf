#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "common/Logger.h"
#include "common/TavloException.h"
#include "request/DataBaseHandler.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"
#include "tests/c/Tables.h"

namespace tavlo::test {
namespace {

void countRelease(void* user) { ++*static_cast<int*>(user); }

template <class Table>
Table counted(int& released) {
  auto made = table<Table>();
  made.user = &released;
  made.released = countRelease;
  return made;
}

TEST(CHost, ATableWithoutCallbacksAnswersLikeNoCollaborator) {
  const auto package = table<tavlo_package>();
  const auto users = table<tavlo_unique_user_handler>();
  const auto database = table<tavlo_database_handler>();
  const auto logger = table<tavlo_logger>();
  const auto reporter = table<tavlo_exception_reporter>();
  const std::string before = textOf(tavlo_getAdditionalRequestingString, nullptr);

  EXPECT_EQ(tavlo_package_install(&package), TAVLO_OK);
  EXPECT_EQ(tavlo_unique_user_handler_install(&users), TAVLO_OK);
  EXPECT_EQ(tavlo_database_handler_install(&database), TAVLO_OK);
  EXPECT_EQ(tavlo_logger_install(&logger), TAVLO_OK);
  EXPECT_EQ(tavlo_exception_reporter_install(&reporter), TAVLO_OK);

  EXPECT_EQ(textOf(tavlo_getAdditionalRequestingString, nullptr), before);
  EXPECT_EQ(textOf(tavlo_getUserInfoRequestString), "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0");
  EXPECT_EQ(DataBaseHandler::sharedInastance()->getNetworkTrackerDetails()->size(), 0U);
  EXPECT_EQ(tavlo_print_log(tavlo_text_of("a")), TAVLO_OK);
  EXPECT_EQ(textOf(tavlo_md5, static_cast<const tavlo_value*>(owned(tavlo_value_null()).get())), "absent");
}

TEST(CHost, ATableIsReleasedOnceByTheLastWhoUsesIt) {
  int released = 0;
  const auto logger = counted<tavlo_logger>(released);
  ASSERT_EQ(tavlo_logger_install(&logger), TAVLO_OK);
  auto used = Logger::installed();

  EXPECT_EQ(tavlo_logger_install(nullptr), TAVLO_OK);
  EXPECT_EQ(released, 0);
  used.reset();
  EXPECT_EQ(released, 1);
}

TEST(CHost, ATableThatIsInstalledTwiceIsReleasedTwice) {
  int released = 0;
  const auto reporter = counted<tavlo_exception_reporter>(released);

  tavlo_exception_reporter_install(&reporter);
  tavlo_exception_reporter_install(&reporter);
  tavlo_exception_reporter_install(nullptr);

  EXPECT_EQ(released, 2);
}

TEST(CHost, ARefusedTableIsNotReleasedAndTheOneBeforeStays) {
  int released = 0;
  auto package = counted<tavlo_package>(released);
  ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);
  const auto before = TavloPackage::sharedInstance();
  for (const std::size_t size : {std::size_t{0}, std::size_t{8}, offsetof(tavlo_package, released), sizeof package + 1,
                                 std::size_t{1} << 40U, SIZE_MAX}) {
    package.size = size;

    EXPECT_EQ(tavlo_package_install(&package), TAVLO_MISUSE) << size;
    EXPECT_EQ(tavlo_last_error(),
              "tavlo_package_install: the size of the tavlo_package is " + std::to_string(size) + "; set it to sizeof");
  }

  EXPECT_EQ(TavloPackage::sharedInstance(), before);
  EXPECT_EQ(released, 0);
  tavlo_package_install(nullptr);
}

TEST(CHost, ATableOfALaterHeaderMayHaveZerosOnly) {
  struct {
    tavlo_logger table;
    void* later;
  } grown{};
  grown.table.size = sizeof grown;
  EXPECT_EQ(tavlo_logger_install(&grown.table), TAVLO_OK);
  grown.later = &grown;

  EXPECT_EQ(tavlo_logger_install(&grown.table), TAVLO_MISUSE);

  EXPECT_STREQ(tavlo_last_error(),
               "tavlo_logger_install: the tavlo_logger is of a newer version: beyond the 32 bytes that this library "
               "knows, only zeros may follow");
}

TEST(CHost, WhatACallbackInCppThrowsEndsTheOperationOnly) {
  auto package = table<tavlo_package>();
  package.text = [](void*, tavlo_package_text, tavlo_answer*) { throw std::runtime_error("of the host"); };
  ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);
  tavlo_string query{const_cast<char*>("stale"), 5};

  EXPECT_EQ(tavlo_getAdditionalRequestingString(nullptr, &query), TAVLO_FAILED);

  EXPECT_STREQ(tavlo_last_error(), "tavlo_getAdditionalRequestingString: a callback threw: of the host");
  EXPECT_EQ(query.data, nullptr);
  package.text = [](void*, tavlo_package_text, tavlo_answer*) { throw 7; };
  ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);
  EXPECT_EQ(tavlo_getAdditionalRequestingString(nullptr, &query), TAVLO_FAILED);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_getAdditionalRequestingString: a callback threw");
}

using TextCallback = void (*)(void*, tavlo_package_text, tavlo_answer*);

// Whatever else it throws is no misuse by the caller, and no lack of memory.
TEST(CHost, OnlyALackOfMemoryThatACallbackThrowsHasAStatusOfItsOwn) {
  auto package = table<tavlo_package>();
  tavlo_string query{};
  for (const auto& [text, status, error] : std::vector<std::tuple<TextCallback, tavlo_status, std::string>>{
           {[](auto...) { throw std::invalid_argument("a"); }, TAVLO_FAILED, "a callback threw: a"},
           {[](auto...) { throw std::length_error("b"); }, TAVLO_FAILED, "a callback threw: b"},
           {[](auto...) { throw std::bad_alloc(); }, TAVLO_NO_MEMORY, "no memory left"},
       }) {
    package.text = text;
    ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);

    EXPECT_EQ(tavlo_getAdditionalRequestingString(nullptr, &query), status);

    EXPECT_EQ(tavlo_last_error(), "tavlo_getAdditionalRequestingString: " + error);
  }
  tavlo_package_install(nullptr);
}

TEST(CHost, WhatReleasingThrowsIsDropped) {
  auto logger = table<tavlo_logger>();
  logger.released = [](void*) { throw std::runtime_error("too late"); };
  ASSERT_EQ(tavlo_logger_install(&logger), TAVLO_OK);

  EXPECT_EQ(tavlo_logger_install(nullptr), TAVLO_OK);
}

TEST(CHost, TheLastAnswerCountsAndAbsentTakesItBack) {
  auto users = table<tavlo_unique_user_handler>();
  users.getUniqueUserDay = [](void*, tavlo_answer* answer) {
    EXPECT_EQ(tavlo_answer_text(answer, tavlo_text_of("1")), TAVLO_OK);
    EXPECT_EQ(tavlo_answer_text(answer, tavlo_text_of("2")), TAVLO_OK);
    EXPECT_EQ(tavlo_answer_text(answer, {nullptr, 3}), TAVLO_MISUSE);
  };
  ASSERT_EQ(tavlo_unique_user_handler_install(&users), TAVLO_OK);
  EXPECT_EQ(TavloUniqueUserHandler::getUniqueUserDay(), "2");

  users.getUniqueUserDay = [](void*, tavlo_answer* answer) {
    EXPECT_EQ(tavlo_answer_text(answer, tavlo_text_of("1")), TAVLO_OK);
    EXPECT_EQ(tavlo_answer_text(answer, tavlo_text_of(nullptr)), TAVLO_OK);
  };
  ASSERT_EQ(tavlo_unique_user_handler_install(&users), TAVLO_OK);
  EXPECT_EQ(TavloUniqueUserHandler::getUniqueUserDay(), std::nullopt);
}

TEST(CHost, TextsOfThePackageHaveTheNamesOfTheirOperations) {
  EXPECT_STREQ(tavlo_package_text_name(TAVLO_PACKAGE_applicationId), "applicationId");
  EXPECT_STREQ(tavlo_package_text_name(TAVLO_PACKAGE_accesskey), "accesskey");
  EXPECT_EQ(tavlo_package_text_name(TAVLO_PACKAGE_TEXTS), nullptr);
  EXPECT_EQ(tavlo_package_text_name(-1), nullptr);
  EXPECT_EQ(tavlo_package_text_named(tavlo_text_of("iosID")), TAVLO_PACKAGE_iosID);
  EXPECT_EQ(tavlo_package_text_named(tavlo_text_of("iosId")), -1);
  EXPECT_EQ(tavlo_package_text_named(tavlo_text_of(nullptr)), -1);
}

TEST(CHost, ASessionStaysInstalledWhenItsMakerHasFreedIt) {
  tavlo_session* const session = tavlo_session_new();
  ASSERT_NE(session, nullptr);
  EXPECT_EQ(tavlo_session_set_text(session, TAVLO_PACKAGE_name, {"a\0b", 3}), TAVLO_OK);
  EXPECT_EQ(tavlo_session_set_limitAdTrackingEnabled(session, true), TAVLO_OK);
  EXPECT_EQ(tavlo_session_set_resolution(session, -3), TAVLO_OK);
  EXPECT_EQ(tavlo_session_set_preRoll(session, 2), TAVLO_OK);
  EXPECT_EQ(tavlo_session_set_text(session, TAVLO_PACKAGE_TEXTS, tavlo_text_of("a")), TAVLO_MISUSE);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_session_set_text: a session package has no text 41");
  ASSERT_EQ(tavlo_session_install(session), TAVLO_OK);

  tavlo_session_free(session);

  const auto package = TavloPackage::sharedInstance();
  EXPECT_EQ(package->name(), std::string("a\0b", 3));
  EXPECT_EQ(package->age(), std::nullopt);
  EXPECT_TRUE(package->limitAdTrackingEnabled());
  EXPECT_EQ(package->resolution(), -3);
  EXPECT_EQ(package->preRoll(), 2);
}

TEST(CHost, AnErrorIsCutAtAThousandBytes) {
  auto package = table<tavlo_package>();
  package.text = [](void*, tavlo_package_text, tavlo_answer*) { throw std::runtime_error(std::string(5000, 'x')); };
  ASSERT_EQ(tavlo_package_install(&package), TAVLO_OK);
  tavlo_string query{};

  EXPECT_EQ(tavlo_getAdditionalRequestingString(nullptr, &query), TAVLO_FAILED);

  EXPECT_EQ(std::strlen(tavlo_last_error()), 1000U);
}

}  // namespace
}  // namespace tavlo::test
