// The log export and the app probe: what is asked, logged and kept, in order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TavloUtility.h"
#include "tests/support/ResourcesPlatform.h"

namespace tavlo {
namespace {

using testing::ElementsAre;

class Window final : public platform::View {
 public:
  Text windowHandle() const override { return "x11:2a"; }
};

class Screen final : public platform::ViewController {
 public:
  explicit Screen(std::shared_ptr<platform::View> view) : view_(std::move(view)) {}
  std::shared_ptr<platform::View> view() override { return view_; }

 private:
  std::shared_ptr<platform::View> view_;
};

std::vector<std::string> exportOver(const std::string& view) {
  return {"documentDirectory",
          "documentDirectoryUrl",
          "console:Documents Directory: file:///app/Documents/",
          "canOpenURL:File Manager://",
          "interactionControllerWithURL:file:///app/Documents/TavloCache/TavloLogFile.txt",
          "presentOpenInMenuFromRect:0,0,0,0 inView:" + view + " animated:1",
          "log:Log file is created"};
}

class LogExport : public testing::Test {
 protected:
  test::ResourcesWorld world_;
};

TEST_F(LogExport, OffersTheFileOverTheView) {
  Screen screen(std::make_shared<Window>());

  TavloUtility::getExportTavloSDKLog(&screen);

  EXPECT_EQ(world_->takeCalls(), exportOver("x11:2a"));
}

TEST_F(LogExport, WithoutAControllerOrAViewOffersItOverNone) {
  TavloUtility::getExportTavloSDKLog(nullptr);
  EXPECT_EQ(world_->takeCalls(), exportOver("(none)"));

  Screen screen(nullptr);
  TavloUtility::getExportTavloSDKLog(&screen);
  EXPECT_EQ(world_->takeCalls(), exportOver("(none)"));
}

TEST_F(LogExport, IsTheSameWhateverTheProbeAnswers) {
  world_->hasFileManagerApp = true;

  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_EQ(world_->takeCalls(), exportOver("(none)"));
}

TEST_F(LogExport, IsLoggedAlsoWhenNoMenuAppears) {
  world_->showsMenus = false;

  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_EQ(world_->takeCalls(), exportOver("(none)"));
}

TEST_F(LogExport, EachOneReleasesTheControllerBefore) {
  TavloUtility::getExportTavloSDKLog(nullptr);
  const auto first = processSlot<platform::DocumentInteractionController>().load();
  EXPECT_EQ(first.use_count(), 2);

  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_EQ(first.use_count(), 1);
  EXPECT_NE(processSlot<platform::DocumentInteractionController>().load(), first);
  EXPECT_EQ(world_->controllersMade.made(), 2);
}

TEST_F(LogExport, ReleasesTheControllerBeforeItPresentsItsMenu) {
  TavloUtility::getExportTavloSDKLog(nullptr);
  static_cast<void>(world_->takeCalls());
  world_->onControllerGone = [&] { world_->note("released", ""); };

  TavloUtility::getExportTavloSDKLog(nullptr);

  auto expected = exportOver("(none)");
  expected.insert(expected.end() - 2, "released");
  EXPECT_EQ(world_->takeCalls(), expected);
}

TEST_F(LogExport, PathIsEncodedInTheUrl) {
  world_->documents = "/app/Ä b#1";

  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_EQ(world_->takeCalls()[4],
            "interactionControllerWithURL:file:///app/%C3%84%20b%231/TavloCache/TavloLogFile.txt");
}

TEST_F(LogExport, WithoutADocumentsDirectoryEndsBeforeTheMenu) {
  world_->documents = std::nullopt;
  world_->documentsUrl = std::nullopt;

  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_THAT(world_->takeCalls(), ElementsAre("documentDirectory", "documentDirectoryUrl",
                                               "console:Documents Directory: (null)", "canOpenURL:File Manager://"));
  EXPECT_EQ(processSlot<platform::DocumentInteractionController>().load(), nullptr);
}

TEST(LogExportWithoutAPlatform, ShowsNothingAndTheProbeIsFalse) {
  TavloUtility::getExportTavloSDKLog(nullptr);

  EXPECT_EQ(processSlot<platform::DocumentInteractionController>().load(), nullptr);
  EXPECT_FALSE(TavloUtility::quillmixInstalledOnThisDevice());
}

TEST_F(LogExport, ProbeIsThePlatformsAnswer) {
  EXPECT_FALSE(TavloUtility::quillmixInstalledOnThisDevice());
  world_->hasFileManagerApp = true;
  EXPECT_TRUE(TavloUtility::quillmixInstalledOnThisDevice());

  EXPECT_THAT(world_->takeCalls(), ElementsAre("canOpenURL:File Manager://", "canOpenURL:File Manager://"));
}

}  // namespace
}  // namespace tavlo
