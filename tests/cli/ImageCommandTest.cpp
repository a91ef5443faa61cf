#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/ChildProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

namespace fs = std::filesystem;
using tavlo::test::readFile;
using tavlo::test::writeFile;

// One red pixel.
constexpr std::string_view kRed =
    "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\b\2\0\0\0\x90\x77\x53\xDE\0\0\0\fIDAT\x78\xDA\x63\xF8\xCF\xC0\0\0\3"
    "\1\1\0\xF7\x03\x41\x43\0\0\0\0IEND\xAE\x42\x60\x82";

class ImageTest : public testing::Test {
 protected:
  [[nodiscard]] Result image(std::vector<std::string> arguments, Setting setting = {}) const {
    arguments.insert(arguments.begin(), "image");
    setting.environment["TAVLO_CONTAINER"] = container();
    setting.folder = folder_.path().string();
    return run(arguments, setting);
  }
  [[nodiscard]] std::string container() const { return (folder_ / "c").string(); }
  [[nodiscard]] std::string bundle() const { return container() + "/Resources/TavloSDKResource.bundle"; }
  [[nodiscard]] static std::string shipped(const std::string& name) {
    return (fs::canonical(std::getenv("TAVLO_PROGRAM")).parent_path() / "Resources/TavloSDKResource.bundle" / name)
        .string();
  }
  void put(const std::string& name, std::string_view bytes) const {
    fs::create_directories(bundle());
    writeFile(bundle() + "/" + name, std::string(bytes));
  }

  const tavlo::test::TemporaryFolder folder_;
};

TEST_F(ImageTest, ShippedImagesAreThereWhereTheContainerHasNone) {
  EXPECT_EQ(image({"mute"}), (Result{0, "mute  64 x 64 pixels  " + shipped("mute.png") + "\n", ""}));
  EXPECT_EQ(image({"volume"}), (Result{0, "volume  64 x 64 pixels  " + shipped("volume.png") + "\n", ""}));
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(ImageTest, JsonHasNameSizeAndFile) {
  EXPECT_EQ(image({"volume", "--json"}),
            (Result{0, R"({"name":"volume","width":64,"height":64,"path":")" + shipped("volume.png") + "\"}\n", ""}));
}

TEST_F(ImageTest, TerminalShowsAPreviewInColours) {
  const Result shown = image({"mute"}, {.output = Stream::terminal, .terminalWidth = 200});

  EXPECT_EQ(shown.exitCode, 0);
  EXPECT_THAT(shown.out, testing::StartsWith("                 \x1b[0;38;2;0;0;0m▄▄▄▄▄▄\x1b[0m                 \n"));
  EXPECT_THAT(shown.out, testing::EndsWith("\nmute  64 x 64 pixels  " + shipped("mute.png") + "\n"));
}

TEST_F(ImageTest, TerminalWithoutColoursShowsItInCharacters) {
  const Result shown =
      image({"mute"}, {.environment = {{"NO_COLOR", "1"}}, .output = Stream::terminal, .terminalWidth = 200});

  EXPECT_THAT(shown.out, testing::StartsWith("                 ......\n"
                                             "           ..................\n"
                                             "        .........................\n"
                                             "      ............................\n"
                                             "    ....:@@*:.......................\n"
                                             "   ......-#@@*...:+@+....:-:.........\n"));
}

TEST_F(ImageTest, NarrowTerminalGetsANarrowPreview) {
  const Result shown = image({"mute", "--color", "never"}, {.output = Stream::terminal, .terminalWidth = 8});

  EXPECT_THAT(shown.out, testing::StartsWith(" ::....\n.-#*=*..\n.-+%=*..\n ....:-\nmute  64 x 64 pixels"));
}

TEST_F(ImageTest, ColoursThatAreAskedForComeWithoutATerminalToo) {
  EXPECT_THAT(image({"mute", "--color", "always"}).out, testing::HasSubstr("\x1b[0;38;2;255;255;255"));
}

TEST_F(ImageTest, ContainersOwnBundleComesFirst) {
  put("mute.png", readFile(shipped("volume.png")));

  EXPECT_EQ(image({"mute"}), (Result{0, "mute  64 x 64 pixels  " + bundle() + "/mute.png\n", ""}));
  EXPECT_EQ(image({"volume"}),
            (Result{0, "(null)\n", "tavlo: note: there is no file volume.png in " + bundle() + "; put it there\n"}));
  EXPECT_EQ(image({"volume", "--json"}).out, "null\n");
}

TEST_F(ImageTest, FileThatIsNoImageIsTold) {
  put("mute.png", kRed.substr(0, 40));

  EXPECT_EQ(image({"mute"}), (Result{0, "(null)\n",
                                     "tavlo: note: cannot read " + bundle() +
                                         "/mute.png as an image; put a PNG file there of at most 16 MiB, 8192 pixels a "
                                         "side and 16777216 pixels in all\n"}));
}

TEST_F(ImageTest, OutWritesTheFileAsItIs) {
  EXPECT_EQ(image({"mute", "--out", "m.png"}).exitCode, 0);

  EXPECT_EQ(readFile(folder_ / "m.png"), readFile(shipped("mute.png")));
}

TEST_F(ImageTest, OutToStandardOutputIsTheFileAndNothingElse) {
  EXPECT_EQ(image({"mute", "--out", "-"}), (Result{0, readFile(shipped("mute.png")), ""}));
}

TEST_F(ImageTest, OutOverwritesNothing) {
  writeFile(folder_ / "m.png", "mine");

  EXPECT_EQ(image({"mute", "--out", "m.png"}),
            (Result{1, "", "tavlo: m.png is there already; give another name, or remove it first\n"}));
  EXPECT_EQ(readFile(folder_ / "m.png"), "mine");
}

TEST_F(ImageTest, OutIntoAFolderThatIsMissingIsAFailure) {
  EXPECT_EQ(image({"mute", "--out", "none/m.png"}),
            (Result{1, "",
                    "tavlo: cannot write none/m.png: No such file or directory; give a file in a folder that is there "
                    "and can be written\n"}));
}

TEST_F(ImageTest, OutWithoutAnImageIsAFailure) {
  put("other.png", "");

  EXPECT_EQ(
      image({"mute", "--out", "m.png"}),
      (Result{1, "",
              "tavlo: there is no image to write: there is no file mute.png in " + bundle() + "; put it there\n"}));
  EXPECT_FALSE(fs::exists(folder_ / "m.png"));
}

TEST_F(ImageTest, LogGetsTheLinesOfOneLoad) {
  fs::create_directories(container() + "/Documents/TavloCache");
  put("mute.png", "");

  ASSERT_EQ(image({"mute"}).exitCode, 0);

  EXPECT_EQ(run({"log", "show", "--json", "--container", container()}).exitCode, 0);
  EXPECT_THAT(readFile(container() + "/Documents/TavloCache/TavloLogFile.txt"),
              testing::MatchesRegex("[^ ]+ Calling Get volume Image first time\n"
                                    "[^ ]+ Loading framework budle once ...\n"
                                    "[^ ]+ Loaded framework bundle .. with path [^\n]+/TavloSDKResource.bundle\n"));
}

TEST_F(ImageTest, OtherNamesAreWrongUse) {
  EXPECT_EQ(image({"close"}),
            (Result{2, "", "tavlo: the image \"close\" is none of volume, mute; see tavlo image --help\n"}));
  EXPECT_EQ(image({}), (Result{2, "", "tavlo: NAME is required; see tavlo image --help\n"}));
  EXPECT_EQ(image({"mute", "--out", ""}),
            (Result{2, "", "tavlo: --out takes the name of a file, or -; see tavlo image --help\n"}));
}

}  // namespace
}  // namespace tavlo::cli::test
