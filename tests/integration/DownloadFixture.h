// Banner downloads on the real platform, from a server on loopback into a temporary container.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "TavloUtility.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/AwaitedLogger.h"
#include "tests/support/BadServer.h"
#include "tests/support/Scale.h"

namespace tavlo::test {

using linux_platform::DownloadLimits;

// A server behaves as its path says, and this is what becomes of it: the image, or none.
struct Behaviour {
  const char* name;
  std::string url;
  std::optional<std::string> image;
};

// Threads and descriptors of this process.
struct Usage {
  std::ptrdiff_t descriptors = count("/proc/self/fd");
  std::ptrdiff_t threads = count("/proc/self/task");

  friend bool operator==(const Usage&, const Usage&) = default;

 private:
  static std::ptrdiff_t count(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
  }
};

// The most memory that this process has had since forgetPeak(), in bytes.
inline std::size_t peak() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word != "VmHWM:") continue;
    std::size_t kibibytes = 0;
    status >> kibibytes;
    return kibibytes << 10U;
  }
  return 0;
}
inline void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

// Whatever a test downloads, it leaves as many descriptors and threads as there were.
class BannerDownloads : public testing::Test {
 protected:
  static inline const std::string kNoData = "getAndSaveBannerImage(): Passed data is empty";
  static inline const std::string kWritten = "getAndSaveBannerImage() - write successfully";

  // Far from what a test needs, so that what ends a download is what the test is about.
  static constexpr std::chrono::hours kFar{24};
  static constexpr DownloadLimits kLimits{
      .connect = kFar, .stall = kFar, .total = kFar, .body = 1U << 20U, .redirects = 5};

  // ThreadSanitizer makes a thread of its own beside the first one of a process, so that one comes and goes before
  // any are counted.
  BannerDownloads() {
    Logger::install(logger_);
    std::thread([] {}).join();
    before_ = Usage();
    usePlatform(kLimits);
  }
  ~BannerDownloads() override { Logger::install(nullptr); }

  void TearDown() override {
    expectAllGivenBack();
    if (behaviours_ > 0) reached("T8", std::to_string(behaviours_) + " behaviours of servers as expected");
  }

  // What the platform had of the process.
  void expectAllGivenBack() {
    platform::install(nullptr);
    const Usage after = usageOnceItIs(before_);
    EXPECT_EQ(after.descriptors, before_.descriptors);
    EXPECT_EQ(after.threads, before_.threads);
  }

  void usePlatform(const DownloadLimits& limits) {
    limits_ = limits;
    platform::install(linux_platform::make({.container = folder_.path(),
                                            .domain = "player",
                                            .quietConsole = true,
                                            .downloads = limits,
                                            .certificateAuthorities = server_.certificateAuthority()}));
  }

  [[nodiscard]] std::filesystem::path cache() const { return folder_ / "Documents/TavloCache"; }
  [[nodiscard]] std::filesystem::path imagePath(const std::string& url) const {
    return cache() / TavloUtility::md5(Value(url)).value_or("");
  }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> names;
    if (!std::filesystem::exists(cache())) return {"(no cache directory)"};
    for (const auto& entry : std::filesystem::directory_iterator(cache())) names.push_back(entry.path().filename());
    return names;
  }

  // Once without a cache directory, and once over an older image, for which little memory is taken. Then the platform
  // goes, and another one takes its place.
  void expect(const Behaviour& behaviour) {
    SCOPED_TRACE(behaviour.name);
    const std::string url = server_.url(behaviour.url);
    const std::filesystem::path path = imagePath(url);
    const std::string pathLine = "Cached directory path : " + path.string();
    using Lines = std::vector<std::string>;

    std::filesystem::remove_all(cache());
    TavloUtility::cachedBannerImage(url);
    const Lines fresh = behaviour.image ? Lines{"TavloCache directory created!", pathLine, kWritten} : Lines{kNoData};
    EXPECT_EQ(logger_->takeAfter(1), fresh);
    EXPECT_EQ(names(), Lines{behaviour.image ? path.filename().string() : "(no cache directory)"});
    EXPECT_TRUE(readFile(path) == behaviour.image.value_or(""));

    std::filesystem::create_directories(cache());
    writeFile(path, "older");
    forgetPeak();
    const std::size_t before = peak();
    TavloUtility::cachedBannerImage(url);
    EXPECT_EQ(logger_->takeAfter(1), (behaviour.image ? Lines{pathLine, kWritten} : Lines{kNoData}));
    EXPECT_EQ(names(), Lines{path.filename().string()});
#ifndef TAVLO_SANITIZED  // sanitizers take memory of their own
    EXPECT_LT(peak() - before, limits_.body + (4U << 20U));
#else
    static_cast<void>(before);
#endif
    EXPECT_TRUE(readFile(path) == behaviour.image.value_or("older"));
    expectAllGivenBack();
    usePlatform(limits_);
    ++behaviours_;
  }

  void expectAll(const std::vector<Behaviour>& behaviours) {
    for (const Behaviour& behaviour : behaviours) expect(behaviour);
  }

  // The kernel and workers that nobody joins take a moment to give back what they had.
  [[nodiscard]] static Usage usageOnceItIs(const Usage& expected) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    Usage usage;
    while (usage != expected && std::chrono::steady_clock::now() < end) {
      std::this_thread::yield();
      usage = Usage();
    }
    return usage;
  }

  BadServer server_;
  Usage before_;
  DownloadLimits limits_;
  int behaviours_ = 0;
  TemporaryFolder folder_;
  std::shared_ptr<AwaitedLogger> logger_ = std::make_shared<AwaitedLogger>();
};

}  // namespace tavlo::test
