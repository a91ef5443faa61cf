// Many threads on one cache directory, on real files. Nothing is locked between them; what must hold all the
// same holds in each single call.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <bit>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include "TavloUtility.h"
#include "tests/integration/RealWorld.h"
#include "tests/integration/SealedBody.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

constexpr int kThreads = 64;

// Real files; tasks run at once, on the thread that hands them over; every URL answers a body: of 1 KiB every other
// time, else of 4 KiB every other time, and so on up to the largest.
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
    const std::size_t size = std::size_t{1024} << 2 * std::countr_zero(number);
    return sealed(std::min(size, largest_), static_cast<char>('a' + (number % 26)));
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

  [[nodiscard]] static std::string told(int count) {
    return std::to_string(count) + " rounds, " + std::to_string(kThreads) + " threads";
  }

  RealWorld world_;
};

TEST_F(CacheUnderThreads, OneMakesTheDirectoryAndTheLosersAreToldOnce) {
  const int count = figure(50, 1'000);
  std::atomic<int> paths = 0;
  std::atomic<int> absents = 0;
  int allAbsents = 0;

  rounds(
      count,
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
        allAbsents += absents;
      });
  reached("T6a", told(count) + ", " + std::to_string(allAbsents) + " absents with as many lines");
}

TEST_F(CacheUnderThreads, AFileInTheWayIsRemovedAndNoImageOfTheWinnerWithIt) {
  const int count = figure(50, 1'000);
  std::atomic<int> absents = 0;
  std::array<bool, kThreads> written{};
  int allAbsents = 0;
  int allWritten = 0;

  rounds(
      count,
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
        EXPECT_TRUE(TavloUtility::getDocumentDirectoryPath("a")) << round;
        static_cast<void>(world_.takeLines());
        allAbsents += absents;
        allWritten += kThreads - absents;
        for (std::size_t i = 0; i < kThreads; ++i) {
          EXPECT_EQ(world_.bytes("TavloCache/image" + std::to_string(i)), written[i] ? "image" : "(no file)") << round;
        }
      });
  reached("T6b", told(count) + ", " + std::to_string(allAbsents) + " absents with as many lines, " +
                     std::to_string(allWritten) + " images kept");
}

TEST_F(CacheUnderThreads, TheLogSurvivesEveryClearingAndNoImageIsEverHalf) {
  platform::install(std::make_shared<InlinePlatform>(platform::current(), 65536));
  world_.putFolder("TavloCache");
  const std::string log(100000, 'l');
  world_.put("TavloCache/TavloLogFile.txt", log);
  const std::uint64_t seeded = seed();
  const int wanted = figure(300, 10'000);
  std::atomic<int> noImage = 0;
  std::atomic<int> noList = 0;
  std::atomic<int> written = 0;
  std::atomic<int> clearings = 0;
  std::atomic<int> looked = 0;

  onThreadsAtOnce(kThreads, [&](int thread) {
    std::mt19937_64 random(seeded * kThreads + static_cast<std::uint64_t>(thread));
    while (clearings < wanted) {
      const std::string url = "http://h/" + std::to_string(random() % 8) + ".png";
      switch (random() % 8) {
        case 0: TavloUtility::clearCache(), ++clearings; break;
        case 1:
          EXPECT_FALSE(TavloUtility::getCachedVideoList(random() % 2 == 0));
          ++noList;
          break;
        case 2:
        case 3:
        case 4: TavloUtility::cachedBannerImage(url), ++written; break;
        default:
          if (const Text path = TavloUtility::getCacheBannerImagePath(url)) {
            const auto body = platform::current()->fileManager().dataWithContentsOfFile(path);
            if (body) ++looked;  // else cleared meanwhile
            EXPECT_TRUE(!body || isUnbroken(*body)) << *path;
          } else {
            ++noImage;
          }
          break;
      }
      EXPECT_EQ(fs::file_size(world_.place("TavloCache/TavloLogFile.txt")), log.size());
    }
  });

  auto lines = countLines();
  EXPECT_EQ(lines["getFileData() - ERROR"], noList);
  EXPECT_EQ(lines["getCacheBannerImagePath() - ERROR: Cache Banner Image Data"], noImage);
  EXPECT_EQ(lines["getAndSaveBannerImage() - write successfully"], written);
  EXPECT_EQ(lines["Couldn't create directory"], 0);
  EXPECT_EQ(world_.bytes("TavloCache/TavloLogFile.txt"), log);
  EXPECT_EQ(world_.temporaries(), std::vector<std::string>{});
  EXPECT_GT(looked, 0) << "after " << clearings << " clearings";
  reached("T6c", std::to_string(clearings) + " clearings and " + std::to_string(noList) + " by a missing list on " +
                     std::to_string(kThreads) + " threads, " + std::to_string(written) + " images written, " +
                     std::to_string(looked) + " read whole, the log intact");
}

TEST_F(CacheUnderThreads, ReadersOfAReplacedImageFindItWhole) {
  platform::install(std::make_shared<InlinePlatform>(platform::current(), std::size_t{4} << 20U));
  Logger::install(nullptr);  // else the lines of so many reads are kept
  constexpr const char* kUrl = "http://h/a.png";
  TavloUtility::cachedBannerImage(kUrl);
  const int wanted = figure(10'000, 1'000'000);
  std::atomic<int> begun = 0;
  std::atomic<int> reads = 0;
  std::atomic<int> empty = 0;
  std::atomic<int> torn = 0;
  std::atomic<int> writes = 0;

  onThreadsAtOnce(2 + 8, [&](int thread) {
    if (thread < 2) {
      while (reads < wanted) TavloUtility::cachedBannerImage(kUrl), ++writes;
      return;
    }
    for (; begun++ < wanted; ++reads) {
      const Text path = TavloUtility::getCacheBannerImagePath(kUrl);
      const std::string body = path ? readFile(*path) : "";
      empty += body.empty() ? 1 : 0;
      torn += isUnbroken(body) ? 0 : 1;
    }
  });

  EXPECT_EQ(reads, wanted);
  EXPECT_EQ(empty, 0);
  EXPECT_EQ(torn, 0);
  reached("T7", std::to_string(reads) + " reads of one image, " + std::to_string(writes) + " replacements, " +
                    std::to_string(torn) + " torn, " + std::to_string(empty) + " empty");
}

}  // namespace
}  // namespace tavlo::test
