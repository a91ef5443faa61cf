// From a download to its look-up, on real files and from a real server.
#include "tests/integration/DownloadFixture.h"

namespace tavlo::test {
namespace {

using Lines = std::vector<std::string>;

class BannerLookUps : public BannerDownloads {
 protected:
  // Downloads, and drops the lines of it.
  void download(const std::string& url) {
    TavloUtility::cachedBannerImage(url);
    static_cast<void>(logger_->takeAfter(1));
  }
  [[nodiscard]] std::string pathLine(const std::string& url) const {
    return "Cached directory path : " + imagePath(url).string();
  }

  static inline const std::string kNoImage =
      "getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist";
  const std::string url_ = server_.url("/length");
};

TEST_F(BannerLookUps, AnImageIsFoundOnceItsDownloadHasEnded) {
  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(url_), std::nullopt);
  EXPECT_EQ(logger_->take(), (Lines{"TavloCache directory created!", pathLine(url_), kNoImage}));

  download(url_);

  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(url_), imagePath(url_).string());
  EXPECT_EQ(logger_->take(), (Lines{pathLine(url_)}));
}

TEST_F(BannerLookUps, BlanksAtTheEndsMakeNoDifference) {
  download(" \t" + url_ + "\xE3\x80\x80");

  EXPECT_EQ(names(), (Lines{imagePath(url_).filename().string()}));
  for (const std::string& asked : {url_, " " + url_, "\xC2\xA0" + url_ + "\t"}) {
    EXPECT_EQ(TavloUtility::getCacheBannerImagePath(asked), imagePath(url_).string());
    EXPECT_EQ(logger_->take(), (Lines{pathLine(url_)}));
  }
}

TEST_F(BannerLookUps, AUrlThatEndsInANewlineIsStoredAndNeverFound) {
  download(url_ + "\n");

  EXPECT_EQ(names(), (Lines{imagePath(url_ + "\n").filename().string()}));
  EXPECT_EQ(readFile(imagePath(url_ + "\n")), BadServer::kBody);
  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(url_ + "\n"), std::nullopt);
  EXPECT_EQ(logger_->take(), (Lines{pathLine(url_), kNoImage}));
}

TEST_F(BannerLookUps, TheNameHasNoExtensionEvenForOneInTheUrl) {
  const std::string url = server_.url("/length?a.png");

  download(url);

  EXPECT_THAT(names(), testing::ElementsAre(testing::MatchesRegex("[0-9a-f]{32}")));
}

TEST_F(BannerLookUps, ClearingTakesTheImage) {
  download(url_);

  TavloUtility::clearCache();

  EXPECT_EQ(TavloUtility::getCacheBannerImagePath(url_), std::nullopt);
  EXPECT_EQ(logger_->take(), (Lines{pathLine(url_), kNoImage}));
}

}  // namespace
}  // namespace tavlo::test
