// Many threads on one cache directory, on real files. Nothing is locked between them; what must hold all the
// same holds in each single call.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include "TavloUtility.h"
#include "tests/integration/RealWorld.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

constexpr int kThreads = 64;
constexpr std::size_t kLargestBody = std::size_t{kUnderThreadSanitizer ? 256 : 4096} << 10U;
// A body that tells whether it is whole: a letter, and then as many of it as the number before it says.
std::string sealed(std::size_t count, char letter) { return std::to_string(count) + std::string(count + 1, letter); }
bool isWhole(const std::string& body) {
  const std::size_t digits = body.find_first_not_of("0123456789");
  return digits != std::string::npos && digits > 0 && body == sealed(std::stoul(body), body[digits]);
}

// Real files; tasks run at once, on the thread that hands them over; every URL answers a body of 1 KiB or twice,
// four times ... as much, up to the largest.
class InlinePlatform final : public platform::Platform, platform::BackgroundQueue, platform::UrlData {
 public:
  InlinePlatform(std::shared_ptr<platform::Platform> real, std::size_t largest)
      : real_(std::move(real)), largest_(largest) {}

  platform::FileManager& fileManager() override { return real_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return *this; }

 private:
  void dispatchAsync(std::function<void()> task) override { task(); }
  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override {
    const unsigned number = ++count_;
    return sealed(std::min(std::size_t{1024} << (number % 13), largest_), static_cast<char>('a' + (number % 26)));
  }

  std::shared_ptr<platform::Platform> real_;
  std::size_t largest_;
  std::atomic<unsigned> count_ = 0;
};

class CacheUnderThreads : public testing::Test {
 protected:
  // Runs the rounds on all threads; `prepare` before and `check` after each one run alone. The threads' own part
  // gets the thread's number.
  template <class Prepare, class Part, class Check>
  void rounds(int count, Prepare prepare, Part part, Check check) {
    std::barrier start(kThreads + 1);
    std::barrier end(kThreads + 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        for (int round = 0; round < count; ++round) {
          start.arrive_and_wait();
          part(i);
          end.arrive_and_wait();
        }
      });
    }
    for (int round = 0; round < count; ++round) {
      prepare();
      start.arrive_and_wait();
      end.arrive_and_wait();
      check(round);
    }
    for (std::thread& thread : threads) thread.join();
  }

  // How many of the lines since the last time begin so.
  [[nodiscard]] std::map<std::string, int> countLines() {
    constexpr auto kBeginnings = std::to_array<const char*>(
        {"TavloCache directory created!", "Couldn't create directory",
         "Cached directory path : ", "TavloCache directory is actually a file! .. removing it",
         "TavloCache directory is actually a file! .. but failed removing it", "getFileData() - ERROR",
         "getCacheBannerImagePath() - ERROR: Cache Banner Image Data", "getAndSaveBannerImage() - write successfully"});
    std::map<std::string, int> counts;
    for (const std::string& line : world_.takeLines()) {
      const auto beginning = std::find_if(kBeginnings.begin(), kBeginnings.end(),
                                          [&](const char* start) { return line.starts_with(start); });
      ++counts[beginning == kBeginnings.end() ? line : *beginning];
    }
    return counts;
  }

  RealWorld world_;
};

TEST_F(CacheUnderThreads, OneMakesTheDirectoryAndTheLosersAreToldOnce) {
  std::atomic<int> paths = 0;
  std::atomic<int> absents = 0;

  rounds(
      scaled(1000),
      [&] {
        fs::remove_all(world_.place("TavloCache"));
        paths = absents = 0;
      },
      [&](int) { ++(TavloUtility::getDocumentDirectoryPath("a") ? paths : absents); },
      [&](int round) {
        auto lines = countLines();
        EXPECT_GE(paths, 1) << round;
        EXPECT_EQ(paths + absents, kThreads) << round;
        EXPECT_EQ(lines["TavloCache directory created!"], 1) << round;
        EXPECT_EQ(lines["Couldn't create directory"], absents) << round;
        EXPECT_EQ(lines["Cached directory path : "], paths) << round;
        EXPECT_TRUE(TavloUtility::getDocumentDirectoryPath("a")) << round;
        static_cast<void>(world_.takeLines());
      });
}

TEST_F(CacheUnderThreads, AFileInTheWayIsRemovedAndNoImageOfTheWinnerWithIt) {
  std::atomic<int> absents = 0;
  std::array<bool, kThreads> written{};

  rounds(
      scaled(1000),
      [&] {
        fs::remove_all(world_.place("TavloCache"));
        world_.put("TavloCache", "squatter");
        absents = 0;
        written.fill(false);
      },
      [&](int i) {
        const Text path = TavloUtility::getDocumentDirectoryPath("image" + std::to_string(i));
        if (!path) {
          ++absents;
          return;
        }
        writeFile(*path, "image");
        written[static_cast<std::size_t>(i)] = true;
      },
      [&](int round) {
        auto lines = countLines();
        EXPECT_EQ(lines["Couldn't create directory"] +
                      lines["TavloCache directory is actually a file! .. but failed removing it"],
                  absents)
            << round;
        EXPECT_EQ(lines["TavloCache directory created!"], 1) << round;
        for (std::size_t i = 0; i < kThreads; ++i) {
          EXPECT_EQ(world_.bytes("TavloCache/image" + std::to_string(i)), written[i] ? "image" : "(no file)") << round;
        }
      });
}

TEST_F(CacheUnderThreads, TheLogSurvivesEveryClearingAndNoImageIsEverHalf) {
  platform::install(std::make_shared<InlinePlatform>(platform::current(), 65536));
  world_.putFolder("TavloCache");
  const std::string log(100000, 'l');
  world_.put("TavloCache/TavloLogFile.txt", log);
  const int kCalls = scaled(200);
  std::atomic<int> noImage = 0;
  std::atomic<int> noList = 0;
  std::atomic<int> written = 0;
  std::atomic<int> clearings = 0;
  std::atomic<int> looked = 0;

  rounds(
      1, [] {},
      [&](int i) {
        std::mt19937 random(static_cast<unsigned>(i));
        for (int call = 0; call < kCalls; ++call) {
          const std::string url = "http://h/" + std::to_string(random() % 8) + ".png";
          switch (random() % 8) {
            case 0: TavloUtility::clearCache(), ++clearings; break;
            case 1:
              EXPECT_FALSE(TavloUtility::getCachedVideoList(random() % 2 == 0));
              ++noList, ++clearings;
              break;
            case 2:
            case 3:
            case 4: TavloUtility::cachedBannerImage(url), ++written; break;
            default:
              if (const Text path = TavloUtility::getCacheBannerImagePath(url)) {
                const auto body = platform::current()->fileManager().dataWithContentsOfFile(path);
                if (body) ++looked;  // else cleared meanwhile
                EXPECT_TRUE(!body || isWhole(*body)) << *path;
              } else {
                ++noImage;
              }
              break;
          }
          EXPECT_EQ(readFile(world_.place("TavloCache/TavloLogFile.txt")).size(), log.size());
        }
      },
      [](int) {});

  auto lines = countLines();
  EXPECT_EQ(lines["getFileData() - ERROR"], noList);
  EXPECT_EQ(lines["getCacheBannerImagePath() - ERROR: Cache Banner Image Data"], noImage);
  EXPECT_EQ(lines["getAndSaveBannerImage() - write successfully"], written);
  EXPECT_EQ(lines["Couldn't create directory"], 0);
  EXPECT_EQ(world_.bytes("TavloCache/TavloLogFile.txt"), log);
  EXPECT_EQ(world_.temporaries(), std::vector<std::string>{});
  EXPECT_GT(looked, 0) << "after " << clearings << " clearings";
}

TEST_F(CacheUnderThreads, ReadersOfAReplacedImageFindItWhole) {
  platform::install(std::make_shared<InlinePlatform>(platform::current(), kLargestBody));
  constexpr const char* kUrl = "http://h/a.png";
  TavloUtility::cachedBannerImage(kUrl);
  const int kReads = scaled(40000);
  std::atomic<int> reads = 0;
  std::atomic<int> torn = 0;

  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      while (reads++ < kReads) {
        const Text path = TavloUtility::getCacheBannerImagePath(kUrl);
        torn += path && isWhole(readFile(*path)) ? 0 : 1;
      }
    });
  }
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      while (reads < kReads) TavloUtility::cachedBannerImage(kUrl);
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(torn, 0) << "of " << kReads << " reads";
}

}  // namespace
}  // namespace tavlo::test
