// A process that ends with downloads under way does so cleanly.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

#include "tests/support/BadServer.h"
#include "tests/support/CaseName.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

struct Exit {
  const char* name;
  const char* way;
  const char* path;
  int held;  // how many downloads wait at the gate before the process is told to end
  int runs;
};

class ThreadedProcess : public testing::TestWithParam<Exit> {
 protected:
  // The exit status, 128 and the signal's number for one that ended the process.
  int run() {
    std::array<int, 2> input{};
    EXPECT_EQ(::pipe2(input.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    std::string program = TAVLO_EXIT_WITH_DOWNLOADS;
    std::string way = GetParam().way;
    std::string container = folder_.path().string();
    std::string url = server_.url(GetParam().path);
    const std::array<char*, 5> arguments{program.data(), way.data(), container.data(), url.data(), nullptr};
    pid_t process = -1;
    EXPECT_EQ(::posix_spawn(&process, program.c_str(), &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);

    server_.waitUntilHeld(GetParam().held);
    EXPECT_EQ(::write(input[1], "\n", 1), 1);
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    ::close(input[1]);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

  BadServer server_;
  TemporaryFolder folder_;
};

TEST_P(ThreadedProcess, EndsWithStatus0WhileItsDownloadsHang) {
  // A forked child has no workers, so that nothing refers to what they held.
  if (GetParam().way == std::string("fork")) ::setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
  const int runs = atFullFigures() ? 200 : GetParam().runs;
  for (int i = 0; i < runs; ++i) ASSERT_EQ(run(), 0);
  reached("T8", std::to_string(runs) + " exits with 100 downloads under way (" + GetParam().name + ")");
}

INSTANTIATE_TEST_SUITE_P(
    Exit, ThreadedProcess,
    testing::Values(Exit{"LeavesMain", "leave", "/gate", 4, 20}, Exit{"LeavesMainAtOnce", "leave", "/never", 0, 20},
                    Exit{"LeavesMainInTLSHandshakes", "leave", "https://127.0.0.1:{silent}/", 0, 5},
                    Exit{"ExitsOnAWorker", "exit-on-worker", "/gate", 4, 5},
                    Exit{"HasReplacedItsPlatform", "replaced", "/gate", 4, 5},
                    Exit{"DropsAPlatformOnAWorker", "dropped", "/gate", 4, 5},
                    Exit{"ForksAChild", "fork", "/gate", 4, 5},
                    Exit{"GoesOnInStaticDestructors", "statics", "/gate", 4, 5}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
