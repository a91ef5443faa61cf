// Answers of a geocoder that come on other threads, wrong, twice or too late: they harm neither the thread that brings
// them nor what is stored already.
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <future>
#include <string>

#include "TavloUtility.h"
#include "host/AnswerThread.h"
#include "tests/support/LocationPlatform.h"
#include "tests/support/Scale.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo {
namespace {

using platform::Placemarks;

// On the thread on which the host's geocoders answer; returns once it has come.
void answerOnTheHostsThread(const test::LocationWorld& world, const Placemarks& placemarks) {
  std::promise<void> done;
  ASSERT_TRUE(host::AnswerThread::post([&] { world->answer(0, placemarks); }));
  ASSERT_TRUE(host::AnswerThread::post([&] { done.set_value(); }));
  done.get_future().wait();
}

TEST(LateAnswersThread, AnEmptyListEndsItsAnswerAloneAndLeavesTheAddress) {
  const test::LocationWorld world;
  TavloUtility::fetchCurrentLocation();
  answerOnTheHostsThread(world, {{.locality = "first"}});

  answerOnTheHostsThread(world, {});
  EXPECT_EQ(world.address(), R"({"city":"first"})");

  answerOnTheHostsThread(world, {{.locality = "last"}});
  EXPECT_EQ(world.address(), R"({"city":"last"})");
}

class Exit : public testing::TestWithParam<const char*> {};

TEST_P(Exit, OfAThreadedProcessIsCleanWhileAnswersCome) {
  const int runs = test::figure(5, 200);
  std::string program = TAVLO_EXIT_WITH_ANSWERS;
  std::string way = GetParam();
  const std::array<char*, 3> arguments{program.data(), way.data(), nullptr};

  for (int run = 0; run < runs; ++run) {
    pid_t process = -1;
    ASSERT_EQ(::posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments.data(), environ), 0);
    int status = -1;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    ASSERT_EQ(WEXITSTATUS(status), 0);
  }

  test::reached("T12", std::to_string(runs) + " exits while answers come (" + way + " thread)");
}

INSTANTIATE_TEST_SUITE_P(LateAnswersThread, Exit, testing::Values("foreign", "host"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace tavlo
