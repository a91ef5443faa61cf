// URLs that name files of this machine, and texts that name nothing.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/linux/LinuxUrlData.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::LinuxUrlData;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

class FileUrl : public testing::Test {
 protected:
  FileUrl() {
    writeFile(folder_ / "image", std::string("\0\x89PNG\r\n", 7));
    writeFile(folder_ / "a b%c\xC3\xA9", "odd name");
    writeFile(folder_ / "empty", "");
    writeFile(folder_ / "limit", std::string(100, 'x'));
    writeFile(folder_ / "larger", std::string(101, 'x'));
    std::filesystem::create_directory(folder_ / "folder");
    std::filesystem::create_symlink("image", folder_ / "link");
    std::filesystem::create_symlink("nowhere", folder_ / "dangling");
    EXPECT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  }

  [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }
  [[nodiscard]] std::optional<std::string> fetch(const std::string& url) { return data_.dataWithContentsOfUrl(url); }

  const TemporaryFolder folder_;
  FaultySyscalls syscalls_{folder_.path().string()};
  LinuxUrlData data_{{.body = 100}, std::nullopt, syscalls_};
};

TEST_F(FileUrl, GivesTheBytesOfARegularFile) {
  const std::string bytes("\0\x89PNG\r\n", 7);

  EXPECT_THAT(fetch("file://" + path("image")), Optional(bytes));
  EXPECT_THAT(fetch("file:" + path("image")), Optional(bytes));
  EXPECT_THAT(fetch("FILE://" + path("image")), Optional(bytes));
  EXPECT_THAT(fetch("file://localhost" + path("image")), Optional(bytes));
  EXPECT_THAT(fetch("file://LocalHost" + path("image")), Optional(bytes));
  EXPECT_THAT(fetch("file://" + path("image") + "?query#fragment"), Optional(bytes));
  EXPECT_THAT(fetch("file://" + path("link")), Optional(bytes));
}

TEST_F(FileUrl, IsPercentDecoded) {
  EXPECT_THAT(fetch("file://" + path("a%20b%25c%C3%a9")), Optional(std::string("odd name")));
  EXPECT_EQ(fetch("file://" + path("a b%25c")), std::nullopt);
}

TEST_F(FileUrl, OfAnEmptyFileIsDataOfLengthZero) {
  EXPECT_THAT(fetch("file://" + path("empty")), Optional(std::string()));
}

TEST_F(FileUrl, HasTheBodyLimit) {
  EXPECT_THAT(fetch("file://" + path("limit")), Optional(std::string(100, 'x')));
  EXPECT_EQ(fetch("file://" + path("larger")), std::nullopt);
}

TEST_F(FileUrl, OfWhatIsNoRegularFileIsAbsentAndNotEvenOpened) {
  for (const std::string name : {"pipe", "folder", "missing", "dangling", ""}) {
    EXPECT_EQ(fetch("file://" + path(name)), std::nullopt) << name;
  }
  EXPECT_EQ(fetch("file:///dev/zero"), std::nullopt);

  EXPECT_EQ(syscalls_.count("open"), 0U);
}

TEST_F(FileUrl, ReplacedByAPipeAfterItWasLookedAtIsAbsentAndDoesNotBlock) {
  syscalls_.setHook([this](const std::string& call) {
    if (call == "open image") std::filesystem::rename(folder_ / "pipe", folder_ / "image");
    return 0;
  });

  EXPECT_EQ(fetch("file://" + path("image")), std::nullopt);
  EXPECT_THAT(syscalls_.calls(), ElementsAre("stat image", "open image", "fstat image", "close image"));
}

TEST_F(FileUrl, IsAbsentWhenACallFails) {
  for (const std::string failing : {"stat image", "open image", "fstat image", "read image"}) {
    syscalls_.setHook([&](const std::string& call) { return call == failing ? EIO : 0; });
    EXPECT_EQ(fetch("file://" + path("image")), std::nullopt) << failing;
  }
}

TEST_F(FileUrl, IsAbsentOnceCancelled) {
  data_.cancel();

  EXPECT_EQ(fetch("file://" + path("image")), std::nullopt);
}

TEST_F(FileUrl, LosesTabsAndLineBreaksWhereverTheyStand) {
  EXPECT_THAT(fetch("\tfi\nle:\r//" + path("lim\nit") + "\n"), Optional(std::string(100, 'x')));
}

struct NoUrl {
  const char* name;
  std::string text;
};

class TextsWithoutData : public testing::TestWithParam<NoUrl> {};

TEST_P(TextsWithoutData, AreAbsentAndReachNoFile) {
  FaultySyscalls syscalls;
  LinuxUrlData data({}, std::nullopt, syscalls);

  EXPECT_EQ(data.dataWithContentsOfUrl(GetParam().text), std::nullopt);
  EXPECT_THAT(syscalls.calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    UrlData, TextsWithoutData,
    testing::Values(NoUrl{"Empty", ""}, NoUrl{"LineBreakOnly", "\n"}, NoUrl{"Blank", " "},
                    NoUrl{"Relative", "/etc/hostname"}, NoUrl{"NoScheme", "//localhost/etc/hostname"},
                    NoUrl{"OtherScheme", "ftp://localhost/a"}, NoUrl{"DataScheme", "data:,a"},
                    NoUrl{"SchemeOnly", "file:"}, NoUrl{"RelativeFile", "file:etc/hostname"},
                    NoUrl{"FileOfAnotherHost", "file://example.org/etc/hostname"},
                    NoUrl{"FileWithAPort", "file://localhost:80/etc/hostname"},
                    NoUrl{"FileWithNulInThePath", "file:///etc/hostname%00.png"},
                    NoUrl{"NulInTheText", std::string("file:///etc/hostname\0", 21)},
                    NoUrl{"BlankInThePath", "file:///etc/host name"}, NoUrl{"BadEscape", "file:///etc/%zz"},
                    NoUrl{"NotAscii", "file:///etc/h\xC3\xA9"}, NoUrl{"HttpWithoutAuthority", "http:/path"},
                    NoUrl{"HttpWithoutHost", "http:///path"}, NoUrl{"HttpWithAPortOnly", "http://:80/path"},
                    NoUrl{"HttpWithAUserOnly", "http://user@/path"}, NoUrl{"HttpOpaque", "http:path"}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
