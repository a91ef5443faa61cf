#include <sys/stat.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/LogFileWriter.h"
#include "tests/host/FileSizeLimit.h"
#include "tests/host/LogFileWriterFixture.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::at;
using testing::SizeIs;

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

TEST_F(LogFileWriterTest, TheFileIsItsUsersAloneUnlessSomebodyElseMadeIt) {
  makeDirectory();

  writer.writeLine("made here");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));

  fs::permissions(file, fs::perms(0640));
  writer.writeLine("shared by the host");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
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

TEST_F(LogFileWriterTest, ALineThatAFullDiskCutShortDoesNotSpoilTheNext) {
  makeDirectory();
  writer.writeLine("one");
  {
    const test::FileSizeLimit limit(35);
    writer.writeLine("two");
  }

  writer.writeLine("three");

  EXPECT_EQ(test::readFile(file), kStamp + "one\n" + "2026-1\n" + kStamp + "(lines dropped: 1)\n" + kStamp + "three\n");
}

}  // namespace
}  // namespace tavlo::host
