// Fetches from a server on loopback, and the banners that they become.
#include <gmock/gmock.h>

#include <string>

#include "platform/Platform.h"
#include "tests/objc/AppTest.h"
#include "tests/objc/Tasks.h"
#include "tests/support/BadServer.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using testing::ElementsAre;

class ObjCFetch : public AppTest {
 protected:
  [[nodiscard]] std::optional<std::string> fetched(const std::string& url) const {
    return platform_->urlData().dataWithContentsOfUrl(server_.url(url));
  }

  // The lines of the download, once it is through.
  static std::vector<std::string> linesOfBanner(const std::string& url) {
    static_cast<void>(calls().take());
    [::TavloUtility cachedBannerImage:string(url)];
    waitForTasks();
    return calls().take();
  }

  BadServer server_;
  std::shared_ptr<platform::Platform> platform_ = apple_platform::make();
};

TEST_F(ObjCFetch, AGoodAnswerIsItsBody) {
  EXPECT_EQ(fetched("/length"), BadServer::kBody);
  EXPECT_EQ(fetched("/chunked"), BadServer::kBody);
  EXPECT_EQ(fetched("/http10"), BadServer::kBody);
  EXPECT_EQ(fetched("/empty"), "");
}

TEST_F(ObjCFetch, ErrorsHaveNoData) {
  EXPECT_EQ(fetched("/status/404"), std::nullopt);
  EXPECT_EQ(fetched("/status/500"), std::nullopt);
  EXPECT_EQ(fetched("/nothing"), std::nullopt);
  EXPECT_EQ(fetched("/nohttp"), std::nullopt);
  EXPECT_EQ(fetched("http://127.0.0.1:{refused}/"), std::nullopt);
}

TEST_F(ObjCFetch, EachOneAsksTheServerForItsOwnUrl) {
  const auto first = fetched("/connections");

  EXPECT_NE(fetched("/connections"), first);
  EXPECT_EQ(fetched("/argument/mine"), "mine");
}

TEST_F(ObjCFetch, ABannerIsTheServersImage) {
  const std::string url = server_.url("/length");

  const auto lines = linesOfBanner(url);

  const Text stored = text([::TavloUtility getCacheBannerImagePath:string(url)]);
  EXPECT_THAT(lines, ElementsAre("printLog:TavloCache directory created!",
                                 "printLog:Cached directory path : " + stored.value_or("(null)"),
                                 "printLog:getAndSaveBannerImage() - write successfully"));
  EXPECT_EQ(readFile(stored.value_or("")), BadServer::kBody);
}

TEST_F(ObjCFetch, ABannerThatIsNotThereIsOneLineAndNoFile) {
  for (const std::string& url : {server_.url("/status/404"), server_.url("http://127.0.0.1:{refused}/"),
                                 std::string("file:///%FF"), std::string("no url")}) {
    EXPECT_THAT(linesOfBanner(url), ElementsAre("printLog:getAndSaveBannerImage(): Passed data is empty")) << url;
  }

  EXPECT_FALSE(std::filesystem::exists(cache()));
}

// docs/objective-c.md lists them; a device follows redirections, and takes half an answer for none.
TEST_F(ObjCFetch, TraitsOfThePlatformAreNotTheContracts) {
  EXPECT_EQ(fetched("/relative"), std::nullopt);
  EXPECT_EQ(fetched("/short"), BadServer::kBody);
}

}  // namespace
}  // namespace tavlo::test
