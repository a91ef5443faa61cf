// A banner download for which there is no memory, at every place where it asks for some. The operator new is this whole
// program's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <new>
#include <utility>

#include "TavloUtility.h"
#include "tests/integration/RealWorld.h"
#include "tests/support/Scale.h"

namespace {

constexpr int kNever = -1;
thread_local int allocationsUntilFailure = kNever;

}  // namespace

// None is inlined, or the compiler takes malloc and delete, or new and free, for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  const bool fails = allocationsUntilFailure == 0;
  if (allocationsUntilFailure != kNever) --allocationsUntilFailure;
  void* const memory = fails ? nullptr : std::malloc(size > 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

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
    allocationsUntilFailure = allocations;
    EXPECT_NO_THROW(platform_->task()) << allocations;
    const bool hasFailed = allocationsUntilFailure < 0;
    allocationsUntilFailure = kNever;
    return hasFailed;
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
  RecordProperty("failures", std::to_string(failures));
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
