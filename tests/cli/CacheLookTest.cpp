// cache ls and explain, which only look.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "cache/KeyedArchive.h"
#include "tests/cli/CacheProgramTest.h"

namespace tavlo::cli::test {
namespace {

using namespace std::chrono_literals;

namespace fs = std::filesystem;

class CacheLookTest : public CacheProgramTest {
 protected:
  void setAge(const std::string& name, std::chrono::seconds age) const {
    fs::last_write_time(path(name), fs::file_time_type::clock::now() - age);
  }
};

TEST_F(CacheLookTest, LsOfNoDirectorySaysSoAndMakesNothing) {
  EXPECT_EQ(cache({"ls"}), (Result{0, "", "tavlo: note: there is no cache directory yet: " + directory() + "\n"}));
  EXPECT_EQ(cache({"ls", "--json", "--quiet"}), (Result{0, "[]\n", ""}));

  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(CacheLookTest, LsShowsNameKindSizeAndAge) {
  put("VideoListAPI", keyed_archive::encode("a"));
  setAge("VideoListAPI", 10 * 24h + 1h);
  put("error", "<html>404</html>");
  setAge("error", 3h + 1min);
  put("image", "GIF89a");
  setAge("image", 2min + 30s);
  put("tomorrow", "");
  setAge("tomorrow", -24h);
  put("TavloLogFile.txt", "GIF89a");
  setAge("TavloLogFile.txt", 24h + 1h);
  fs::create_symlink("/etc/passwd", path("link"));
  ::mkfifo(path("pipe").c_str(), 0600);
  fs::create_directory(path("folder"));

  const Result listed = cache({"ls"});

  EXPECT_EQ(listed.exitCode, 0);
  EXPECT_THAT(listed.out, testing::MatchesRegex("name              kind           bytes  age\n"
                                                "TavloLogFile.txt  log            6      1 d\n"
                                                "VideoListAPI      list           [0-9]+    10 d\n"
                                                "error             HTML page      16     3 h\n"
                                                "folder            folder         -      [0-9]+ s\n"
                                                "image             GIF image      6      2 min\n"
                                                "link              symbolic link  -      [0-9]+ s\n"
                                                "pipe              other          -      [0-9]+ s\n"
                                                "tomorrow          empty          0      in the future\n"));
}

TEST_F(CacheLookTest, NamesThatAreNoUtf8AreShownHarmlessly) {
  put("a\xFF\x1b[31m\n", "x");
  ::timespec times[2] = {{.tv_sec = 1700000000, .tv_nsec = 0}, {.tv_sec = 1700000000, .tv_nsec = 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path("a\xFF\x1b[31m\n").c_str(), times, 0), 0);

  EXPECT_THAT(cache({"ls"}).out, testing::HasSubstr("\na\\xff\\u{1b}[31m\\n  other  1      "));
  EXPECT_EQ(cache({"ls", "--json"}),
            (Result{0,
                    R"([{"name":{"$text":"61ff1b5b33316d0a"},"kind":"other","bytes":1,"modified":1700000000}])"
                    "\n",
                    ""}));
}

TEST_F(CacheLookTest, LsOfWhatIsNoDirectoryIsAFailure) {
  fs::create_directories(container() + "/Documents");
  tavlo::test::writeFile(directory(), "");

  EXPECT_EQ(cache({"ls"}), (Result{1, "",
                                   "tavlo: cannot read the cache directory " + directory() +
                                       ": Not a directory; check that it is a folder, and the rights to it\n"}));
}

TEST_F(CacheLookTest, ExplainShowsTheNamesAndWhatIsThere) {
  put("46a031da1eba2acf8ec285d177c677da.mp4", "video");

  EXPECT_EQ(cache({"explain", "http://h/a.mp4"}), (Result{0, R"(text as given             "http://h/a.mp4"
cleaned for look-ups      "http://h/a.mp4"
trimmed for the download  "http://h/a.mp4"
extension, as given       "mp4"
digest, cleaned           "46a031da1eba2acf8ec285d177c677da"
video file                46a031da1eba2acf8ec285d177c677da.mp4  is there
banner is stored as       46a031da1eba2acf8ec285d177c677da      missing
banner is looked up as    46a031da1eba2acf8ec285d177c677da      missing

The video look-up finds its file.
The banner look-up misses: no file of that name is there. It was never stored, or cleared.
)",
                                                          ""}));
  EXPECT_EQ(names(), std::vector<std::string>{"46a031da1eba2acf8ec285d177c677da.mp4"});
}

TEST_F(CacheLookTest, ExplainTellsTheTwoNamesOfAUrlWithANewline) {
  EXPECT_EQ(
      cache({"explain", "http://h/\na.mp4", "--json"}),
      (Result{0,
              R"json({"url":"http://h/\na.mp4","cleaned":"http://h/a.mp4","trimmed":"http://h/\na.mp4",)json"
              R"json("extension":null,"digest":"46a031da1eba2acf8ec285d177c677da",)json"
              R"json("video":{"name":"46a031da1eba2acf8ec285d177c677da.(null)","exists":false},)json"
              R"json("bannerWritten":{"name":"3d1fce77ea51e92beff9e69913394376","exists":false},)json"
              R"json("bannerLookedUp":{"name":"46a031da1eba2acf8ec285d177c677da","exists":false},)json"
              R"json("reasons":["The text as given is no URL, only the cleaned one is, and the extension )json"
              R"json(comes from the text as given, so the video's name ends in .(null).",)json"
              R"json("The video look-up misses: no file of that name is there. It was never stored, )json"
              R"json(stored under another name, or cleared.",)json"
              R"json("The banner look-up misses, and will: newlines in the text, and at its ends, are removed )json"
              R"json(for the look-up but not for storing. Fetch and look up the cleaned text."]})json"
              "\n",
              ""}));
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(CacheLookTest, ExplainFindsABannerByTheNameThatIsLookedUp) {
  put("46a031da1eba2acf8ec285d177c677da", "image");

  const std::string shown = cache({"explain", "http://h/a.mp4\n"}).out;

  EXPECT_THAT(shown,
              testing::HasSubstr("banner is looked up as    46a031da1eba2acf8ec285d177c677da         is there\n"));
  EXPECT_THAT(shown, testing::HasSubstr("\nThe banner look-up finds its file.\n"));
}

TEST_F(CacheLookTest, ExplainTellsWhyNamesEndAsTheyDo) {
  EXPECT_THAT(cache({"explain", "http://h/a"}).out,
              testing::HasSubstr("\nThe path of the URL has no extension, so the video's name ends in a dot.\n"));
  EXPECT_THAT(
      cache({"explain", "http://h/a b.mp4"}).out,
      testing::HasSubstr("\nThe text is no URL (a blank, or another character that has to be percent-encoded?), "
                         "so the video's name ends in .(null).\n"));
  EXPECT_THAT(cache({"explain", ""}).out,
              testing::HasSubstr("\nbanner is looked up as    (null)\n"
                                 "\nThe video look-up answers at once: the text is empty.\n"
                                 "The banner look-up answers at once: the cleaned text is empty.\n"));
  EXPECT_THAT(cache({"explain", "\n"}).out,
              testing::HasSubstr("\nbanner is stored as       68b329da9893e34099c7d8ad5cb9c940         missing\n"
                                 "banner is looked up as    (null)\n"));
}

TEST_F(CacheLookTest, NameThatIsTooLongForAFileIsOneThatIsMissing) {
  std::filesystem::create_directories(directory());

  const Result explained = cache({"explain", "http://h/a." + std::string(300, 'x'), "--json"});

  EXPECT_EQ(explained.exitCode, 0);
  EXPECT_EQ(explained.err, "");
  EXPECT_THAT(explained.out, testing::HasSubstr(std::string(300, 'x') + "\",\"exists\":false}"));
}

}  // namespace
}  // namespace tavlo::cli::test
