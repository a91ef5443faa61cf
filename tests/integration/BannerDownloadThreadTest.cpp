// Many downloads at once.
#include <chrono>
#include <map>
#include <set>

#include "tests/integration/DownloadFixture.h"

namespace tavlo::test {
namespace {

using BannerDownloadThread = BannerDownloads;

// The first five give an image.
const std::vector<std::string> kMixed{"/length", "/chunked", "/empty", "/relative", "/chain/5",
                                      "/reset",  "/short",   "/self",  "/unended",  "/status/404"};

TEST_F(BannerDownloadThread, CallsReturnWhileEveryWorkerIsHeldAndAllDownloadsEnd) {
  std::filesystem::create_directories(cache());
  std::set<std::string> images;
  std::chrono::microseconds inCalls{0};

  for (int i = 0; i < 1000; ++i) {
    if (i == 4) server_.waitUntilHeld(4);
    const bool good = i < 4 || i % 10 < 5;
    const std::string path = i < 4 ? "/gate" : kMixed[static_cast<std::size_t>(i) % kMixed.size()];
    const std::string url = server_.url(path + "?" + std::to_string(i));
    const auto begin = std::chrono::steady_clock::now();
    TavloUtility::cachedBannerImage(url);
    inCalls += std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
    if (good) images.insert(imagePath(url).filename());
  }
  EXPECT_TRUE(logger_->isEmpty());
  server_.openGate();

  std::map<std::string, int> lines;
  for (const std::string& line : logger_->takeAfter(1000)) ++lines[line.starts_with("Cached") ? "path" : line];
  EXPECT_EQ(lines, (std::map<std::string, int>{{"path", 500}, {kWritten, 500}, {kNoData, 500}}));
  const auto stored = names();
  EXPECT_EQ(std::set<std::string>(stored.begin(), stored.end()), images);
  reached("T8", "1000 calls returned before the first answer, in " + std::to_string(inCalls.count()) +
                    " microseconds of calls; all 1000 downloads ended");
}

TEST_F(BannerDownloadThread, APlatformTakenOutEndsWithItsLastDownload) {
  std::filesystem::create_directories(cache());
  const Usage before;
  std::weak_ptr<platform::Platform> platform = platform::current();
  for (int i = 0; i < 4; ++i) TavloUtility::cachedBannerImage(server_.url("/gate"));
  server_.waitUntilHeld(4);

  platform::install(nullptr);
  EXPECT_FALSE(platform.expired());
  server_.openGate();
  const auto lines = logger_->takeAfter(4);

  EXPECT_EQ(std::count(lines.begin(), lines.end(), kWritten), 4);
  EXPECT_EQ(usageOnceItIs(before), before);
  EXPECT_TRUE(platform.expired());
}

}  // namespace
}  // namespace tavlo::test
