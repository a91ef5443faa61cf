// A process that ends while it waits for a position and for an address does so cleanly, and hears of neither.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

#include "tests/support/CaseName.h"
#include "tests/support/GeoClueWorld.h"
#include "tests/support/Nominatim.h"

namespace tavlo::test {
namespace {

struct Exit {
  const char* name;
  const char* way;
  const char* expected;  // the exit status, 128 and the number of a signal that ended the process, and what it printed
};

class ThreadedProcessWithServices : public testing::TestWithParam<Exit> {
 protected:
  std::string run() {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    EXPECT_EQ(::pipe2(input.data(), O_CLOEXEC), 0);
    EXPECT_EQ(::pipe2(output.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::string program = TAVLO_EXIT_WITH_SERVICES;
    std::string way = GetParam().way;
    std::string container = folder_.path().string();
    std::string url = service_.url("hold");
    const std::array<char*, 5> arguments{program.data(), way.data(), container.data(), url.data(), nullptr};
    pid_t process = -1;
    EXPECT_EQ(::posix_spawn(&process, program.c_str(), &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);

    static_cast<void>(service_.request());  // it waits for the first address now
    EXPECT_EQ(::write(input[1], "\n", 1), 1);
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    std::array<char, 256> printed{};
    const ssize_t size = ::read(output[0], printed.data(), printed.size());
    ::close(input[1]);
    ::close(output[0]);
    return std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)) + " " +
           std::string(printed.data(), static_cast<std::size_t>(size));
  }

  GeoClueWorld world_;
  Nominatim service_;
  TemporaryFolder folder_;
};

TEST_P(ThreadedProcessWithServices, EndsWithStatus0AndWithoutAnAnswer) {
  world_.run("daemon");  // without an agent, it leaves every question open
  // A forked child has no threads, so that nothing refers to what they held.
  if (GetParam().way == std::string("fork")) ::setenv("LSAN_OPTIONS", "detect_leaks=0", 1);

  for (int i = 0; i < 5; ++i) ASSERT_EQ(run(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Exit, ThreadedProcessWithServices,
                         testing::Values(Exit{"LeavesMain", "leave", "0 "}, Exit{"DropsThePlatform", "drop", "0 "},
                                         Exit{"ExitsOnAWorker", "exit-on-worker", "0 "},
                                         Exit{"AsksInStaticDestructors", "statics", "0 "},
                                         Exit{"AsksInAForkedChild", "fork", "0 "}),
                         kCaseName);

}  // namespace
}  // namespace tavlo::test
