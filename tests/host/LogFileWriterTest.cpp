#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/LogFileWriter.h"
#include "tests/host/Times.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::at;
using testing::ElementsAre;
using testing::SizeIs;

constexpr auto kHalfPastNine = 9h + 30min + 123ms;
const std::string kStamp = "2026-11-21T09:30:00.123Z ";

class LogFileWriterTest : public testing::Test {
 protected:
  void SetUp() override { clock.now = at(2026, 11, 21, kHalfPastNine); }

  void makeDirectory() const { fs::create_directory(directory); }
  [[nodiscard]] std::vector<std::string> lines() const { return test::splitLines(test::readFile(file)); }

  const test::TemporaryFolder documents;
  const fs::path directory = documents / "TavloCache";
  const fs::path file = directory / "TavloLogFile.txt";
  test::ManualClock clock;
  LogFileWriter writer{documents.path(), clock.clock()};
};

TEST_F(LogFileWriterTest, AppendsOneStampedLineAMessage) {
  makeDirectory();

  writer.writeLine("TavloCache directory created!");
  clock.now = at(2027, 1, 2, 3h + 4min + 5s + 6ms);
  writer.writeLine("");
  writer.writeLine("  zwei  Grüße ");

  EXPECT_EQ(test::readFile(file),
            "2026-11-21T09:30:00.123Z TavloCache directory created!\n"
            "2027-01-02T03:04:05.006Z \n"
            "2027-01-02T03:04:05.006Z   zwei  Grüße \n");
}

TEST_F(LogFileWriterTest, TimesBeforeTheEpochCountForward) {
  makeDirectory();
  clock.now = at(1970, 1, 1, -1ms);

  writer.writeLine("early");

  EXPECT_EQ(test::readFile(file), "1969-12-31T23:59:59.999Z early\n");
}

TEST_F(LogFileWriterTest, AMessageNeverMakesTwoLines) {
  makeDirectory();

  writer.writeLine("a\nb\r\nc\\n");

  EXPECT_EQ(test::readFile(file), kStamp + "a\\nb\\r\\nc\\n\n");
}

TEST_F(LogFileWriterTest, WhatIsInTheFileStays) {
  makeDirectory();
  test::writeFile(file, "older\n");

  writer.writeLine("newer");

  EXPECT_EQ(test::readFile(file), "older\n" + kStamp + "newer\n");
}

TEST_F(LogFileWriterTest, LinesWaitForTheDirectoryAndDoNotMakeIt) {
  writer.writeLine("one");
  clock.now = at(2026, 11, 21, kHalfPastNine + 1s);
  writer.writeLine("two");
  EXPECT_FALSE(fs::exists(directory));

  makeDirectory();
  writer.writeLine("three");

  EXPECT_EQ(test::readFile(file),
            "2026-11-21T09:30:00.123Z one\n"
            "2026-11-21T09:30:01.123Z two\n"
            "2026-11-21T09:30:01.123Z three\n");
}

TEST_F(LogFileWriterTest, ARemovedFileIsMadeAnew) {
  makeDirectory();
  writer.writeLine("one");
  fs::remove(file);

  writer.writeLine("two");

  EXPECT_EQ(test::readFile(file), kStamp + "two\n");
}

TEST_F(LogFileWriterTest, LinesOfARemovedDirectoryWaitForTheNextOne) {
  makeDirectory();
  writer.writeLine("one");
  fs::remove_all(directory);
  writer.writeLine("two");
  makeDirectory();

  writer.writeLine("three");

  EXPECT_EQ(test::readFile(file), kStamp + "two\n" + kStamp + "three\n");
}

// With its stamp and its newline such a line has 1,024 bytes.
std::string kibibyteMessage(int number) {
  std::string text = std::to_string(number);
  return text + std::string(998 - text.size(), '.');
}

TEST_F(LogFileWriterTest, SixtyFourKibibytesAreHeldBackWhole) {
  for (int i = 1; i <= 64; ++i) writer.writeLine(kibibyteMessage(i));
  makeDirectory();

  writer.writeLine("end");

  const auto written = lines();
  ASSERT_THAT(written, SizeIs(65));
  EXPECT_EQ(written.front(), kStamp + kibibyteMessage(1));
  EXPECT_EQ(written.back(), kStamp + "end");
}

TEST_F(LogFileWriterTest, TheOldestLinesGiveWayAndAreCounted) {
  for (int i = 1; i <= 66; ++i) {
    clock.now = at(2026, 11, 21, std::chrono::seconds(i));
    writer.writeLine(kibibyteMessage(i));
  }
  makeDirectory();

  writer.writeLine("end");
  writer.writeLine("once only");

  const auto written = lines();
  ASSERT_THAT(written, SizeIs(1 + 64 + 2));
  EXPECT_EQ(written[0], "2026-11-21T00:00:02.000Z (lines dropped: 2)");
  for (int i = 3; i <= 66; ++i) EXPECT_EQ(written[static_cast<std::size_t>(i) - 2].substr(25), kibibyteMessage(i));
  EXPECT_EQ(written[65], "2026-11-21T00:01:06.000Z end");
  EXPECT_EQ(written[66], "2026-11-21T00:01:06.000Z once only");
}

TEST_F(LogFileWriterTest, ALineBeyondTheLimitIsOnlyDroppedWhenItHasToWait) {
  const std::string huge(LogFileWriter::kMostHeldBack, 'x');

  writer.writeLine(huge);
  makeDirectory();
  writer.writeLine(huge);

  EXPECT_EQ(test::readFile(file), kStamp + "(lines dropped: 1)\n" + kStamp + huge + "\n");
}

TEST_F(LogFileWriterTest, AClockThatThrowsCostsItsLineOnly) {
  makeDirectory();
  bool broken = true;
  LogFileWriter fragile(documents.path(), [&broken]() -> std::chrono::system_clock::time_point {
    if (broken) throw std::runtime_error("no time");
    return at(2026, 11, 21);
  });

  fragile.writeLine("lost");
  broken = false;
  fragile.writeLine("kept");

  EXPECT_EQ(test::readFile(file),
            "1970-01-01T00:00:00.000Z (lines dropped: 1)\n"
            "2026-11-21T00:00:00.000Z kept\n");
}

struct Obstacle {
  const char* name;
  std::function<void(const fs::path&)> put;
};

class LogFileWriterObstacle : public LogFileWriterTest, public testing::WithParamInterface<Obstacle> {};

TEST_P(LogFileWriterObstacle, IsNeitherWrittenToNorWaitedFor) {
  makeDirectory();
  GetParam().put(file);

  writer.writeLine("one");
  EXPECT_EQ(test::readFile(documents / "elsewhere.txt"), "");
  fs::remove(file);
  writer.writeLine("two");

  EXPECT_EQ(test::readFile(file), kStamp + "one\n" + kStamp + "two\n");
}

INSTANTIATE_TEST_SUITE_P(
    All, LogFileWriterObstacle,
    testing::Values(Obstacle{"Pipe", [](const fs::path& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }},
                    Obstacle{"Folder", [](const fs::path& path) { fs::create_directory(path); }},
                    Obstacle{"LinkToADevice", [](const fs::path& path) { fs::create_symlink("/dev/full", path); }},
                    Obstacle{"LinkToAFile",
                             [](const fs::path& path) {
                               test::writeFile(path.parent_path().parent_path() / "elsewhere.txt", "");
                               fs::create_symlink("../elsewhere.txt", path);
                             }},
                    Obstacle{"LinkToNothing",
                             [](const fs::path& path) { fs::create_symlink("../elsewhere.txt", path); }}),
    [](const auto& row) { return row.param.name; });

// Files of this process cannot grow beyond a size, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{.rlim_cur = size, .rlim_max = before_.rlim_max};
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  void (*handler_)(int) = SIG_DFL;
};

TEST_F(LogFileWriterTest, ALineThatAFullDiskCutShortDoesNotSpoilTheNext) {
  makeDirectory();
  writer.writeLine("one");
  {
    const FileSizeLimit limit(35);
    writer.writeLine("two");
  }

  writer.writeLine("three");

  EXPECT_EQ(test::readFile(file), kStamp + "one\n" + "2026-1\n" + kStamp + "(lines dropped: 1)\n" + kStamp + "three\n");
}

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

TEST_F(LogFileWriterTest, LinesOfSeveralProcessesDoNotMix) {
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

TEST_F(LogFileWriterTest, ThreadsLoseNoLineWhileTheDirectoryComesAndGoes) {
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

TEST_F(LogFileWriterTest, LinesOfOneThreadKeepTheirOrder) {
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
