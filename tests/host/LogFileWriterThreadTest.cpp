#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "tests/host/LogFileWriterFixture.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

using LogFileWriterThreads = LogFileWriterTest;

std::string selfCheckingMessage(int writer, int number) {
  return std::to_string(writer) + ":" + std::to_string(number) + ":" +
         std::string(static_cast<std::size_t>(number % 50) * 97, static_cast<char>('a' + writer));
}

std::vector<std::string> selfCheckingLines(int writers, int each) {
  std::vector<std::string> all;
  for (int writer = 0; writer < writers; ++writer) {
    for (int i = 0; i < each; ++i) all.push_back(kStamp + selfCheckingMessage(writer, i));
  }
  return all;
}

TEST_F(LogFileWriterThreads, LinesOfSeveralProcessesDoNotMix) {
  constexpr int kProcesses = 4;
  constexpr int kLines = 300;
  makeDirectory();
  std::vector<pid_t> children;

  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int i = 0; i < kLines; ++i) writer.writeLine(selfCheckingMessage(process, i));
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) ::waitpid(child, nullptr, 0);

  EXPECT_THAT(lines(), testing::UnorderedElementsAreArray(selfCheckingLines(kProcesses, kLines)));
}

TEST_F(LogFileWriterThreads, ThreadsLoseNoLineWhileTheDirectoryComesAndGoes) {
  constexpr int kThreads = 8;
  constexpr int kLines = 25;
  constexpr int kMoves = 50;
  std::vector<std::jthread> threads;

  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread] {
      for (int i = 0; i < kLines; ++i) writer.writeLine(selfCheckingMessage(thread, i % 3));
    });
  }
  for (int move = 0; move < kMoves; ++move) {
    makeDirectory();
    std::this_thread::yield();
    fs::rename(directory, documents / ("moved-" + std::to_string(move)));
  }
  threads.clear();
  makeDirectory();
  writer.writeLine("end");

  std::vector<std::string> written;
  for (const auto& entry : fs::recursive_directory_iterator(documents.path())) {
    for (std::string& line : test::splitLines(test::readFile(entry.path()))) written.push_back(std::move(line));
  }
  std::vector<std::string> expected = {kStamp + "end"};
  for (int thread = 0; thread < kThreads; ++thread) {
    for (int i = 0; i < kLines; ++i) expected.push_back(kStamp + selfCheckingMessage(thread, i % 3));
  }
  std::sort(written.begin(), written.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(written, expected);
}

TEST_F(LogFileWriterThreads, LinesOfOneThreadKeepTheirOrder) {
  makeDirectory();
  std::vector<std::jthread> threads;

  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this, thread] {
      for (int i = 0; i < 100; ++i) writer.writeLine(std::to_string(thread) + " " + std::to_string(i));
    });
  }
  threads.clear();

  std::vector<int> next(4, 0);
  for (const std::string& line : lines()) {
    const auto thread = static_cast<std::size_t>(line.at(kStamp.size()) - '0');
    EXPECT_EQ(line, kStamp + std::to_string(thread) + " " + std::to_string(next.at(thread)++));
  }
  EXPECT_THAT(next, ElementsAre(100, 100, 100, 100));
}

}  // namespace
}  // namespace tavlo::host
