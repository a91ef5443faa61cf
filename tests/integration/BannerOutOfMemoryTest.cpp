// A banner download for which there is no memory, at every place where it asks for some.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <future>
#include <new>
#include <set>
#include <thread>
#include <utility>

#include "TavloUtility.h"
#include "platform/linux/WorkerQueue.h"
#include "tests/integration/RealWorld.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

const std::string kNoData = "getAndSaveBannerImage(): Passed data is empty";
const std::string kWritten = "getAndSaveBannerImage() - write successfully";
const std::string kNotWritten = "getAndSaveBannerImage(): ERROR - write failed";

// The real platform, except that a task waits to be run by hand.
class SteppedPlatform final : public platform::Platform, platform::BackgroundQueue {
 public:
  explicit SteppedPlatform(std::shared_ptr<platform::Platform> real) : real_(std::move(real)) {}

  platform::FileManager& fileManager() override { return real_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return real_->urlData(); }

  std::function<void()> task;

 private:
  void dispatchAsync(std::function<void()> given) override { task = std::move(given); }

  std::shared_ptr<platform::Platform> real_;
};

// Keeps the last line, without asking for memory. Of one line it says that there was none.
class LastLine final : public Logger {
 public:
  void writeLine(std::string_view message) override {
    size_ = message.copy(line_.data(), line_.size());
    if (message == failing) throw std::bad_alloc();
  }
  [[nodiscard]] std::string take() { return {line_.data(), std::exchange(size_, 0)}; }

  std::string failing;

 private:
  std::array<char, 4096> line_{};
  std::size_t size_ = 0;
};

class BannerOutOfMemory : public testing::Test {
 protected:
  BannerOutOfMemory() {
    writeFile(origin_ / "image", std::string(20000, 'n'));
    platform::install(platform_);
    Logger::install(lines_);
    // It takes a std::call_once() whose function has thrown for one that is never done.
    if (kUnderThreadSanitizer) static_cast<void>(platform_->fileManager());
  }

  void putOlderImage() {
    world_.remove("TavloCache");
    world_.putFolder("TavloCache");
    world_.put(kImage, "older");
  }

  // False: memory never ran out.
  bool runOutAfter(int allocations) {
    TavloUtility::cachedBannerImage(url_);
    OutOfMemory memory(allocations, OutOfMemory::Lasts::once);
    EXPECT_NO_THROW(platform_->task()) << allocations;
    return memory.end();
  }

  RealWorld world_;
  TemporaryFolder origin_;
  const std::string url_ = "file://" + (origin_ / "image").string();
  const std::string kImage = "TavloCache/" + TavloUtility::md5(Value(url_)).value_or("");
  const std::shared_ptr<SteppedPlatform> platform_ = std::make_shared<SteppedPlatform>(platform::current());
  const std::shared_ptr<LastLine> lines_ = std::make_shared<LastLine>();
};

TEST_F(BannerOutOfMemory, IsToldAsTheFailureItIsAndLeavesTheOlderImage) {
  int failures = 0;
  for (;; ++failures) {
    putOlderImage();
    if (!runOutAfter(failures)) break;
    const std::string line = lines_->take();
    EXPECT_TRUE(line == kNoData || line == kNotWritten) << failures << ": " << line;
    EXPECT_EQ(world_.bytes(kImage), "older") << failures;
  }

  EXPECT_EQ(lines_->take(), kWritten);
  EXPECT_EQ(world_.bytes(kImage), std::string(20000, 'n'));
  EXPECT_THAT(world_.temporaries(), testing::IsEmpty());
  EXPECT_GT(failures, 5);
  reached("T13", std::to_string(failures) + " allocations that failed in a banner's task");
}

TEST_F(BannerOutOfMemory, EndsNoWorkerThread) {
  putOlderImage();
  linux_platform::WorkerQueue queue(1);
  std::set<std::thread::id> workers;
  bool failed = true;

  for (int allocations = 0; failed; ++allocations) {
    TavloUtility::cachedBannerImage(url_);
    std::promise<void> done;
    queue.dispatchAsync([&] {
      workers.insert(std::this_thread::get_id());
      OutOfMemory memory(allocations, OutOfMemory::Lasts::toTheEnd);
      platform_->task();
      failed = memory.end();
    });
    queue.dispatchAsync([&] { done.set_value(); });
    done.get_future().wait();
    const std::string line = lines_->take();
    EXPECT_TRUE(line == kWritten || (failed && (line == kNoData || line == kNotWritten))) << allocations << line;
  }

  EXPECT_EQ(workers.size(), 1U);
  EXPECT_EQ(world_.bytes(kImage), std::string(20000, 'n'));
}

TEST_F(BannerOutOfMemory, OfTheLoggerMakesNoFailureOfAnImageThatIsWritten) {
  lines_->failing = kWritten;
  TavloUtility::cachedBannerImage(url_);

  EXPECT_THROW(platform_->task(), std::bad_alloc);

  EXPECT_EQ(lines_->take(), kWritten);
  EXPECT_EQ(world_.bytes(kImage), std::string(20000, 'n'));
}

}  // namespace
}  // namespace tavlo::test
