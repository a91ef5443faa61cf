#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "host/CachedLists.h"
#include "platform/Platform.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo::host {
namespace {

using platform::FileResult;
using test::Installed;
using test::InstalledPlatform;
using test::RecordingLogger;
using testing::ElementsAre;
using testing::IsEmpty;

// Has Documents with the cache directory in it, and keeps what is written.
class OneFolderPlatform final : public platform::Platform, public platform::FileManager {
 public:
  platform::FileManager& fileManager() override { return *this; }

  Text documentDirectory() override { return documents; }
  platform::Existence fileExistsAtPathIsDirectory(const Text& path) override {
    return path == "/d/TavloCache" ? platform::Existence::directory : platform::Existence::missing;
  }
  FileResult removeItemAtPath(const Text&, platform::Removal) override { return FileResult::failure("none"); }
  FileResult createDirectoryAtPath(const Text&) override { return FileResult::failure("read-only"); }
  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text&) override { return std::nullopt; }
  std::optional<std::string> dataWithContentsOfFile(const Text&) override { return written; }
  FileResult writeToFileAtomically(std::string_view bytes, const Text& path, platform::Durable durable) override {
    writes.push_back(path.value_or("(null)") + (durable == platform::Durable::name ? " durable" : ""));
    if (!failure.empty()) return FileResult::failure(failure);
    written = bytes;
    return FileResult::success();
  }

  Text documents = "/d";
  std::string failure;
  std::optional<std::string> written;
  std::vector<std::string> writes;
};

class CachedListsTest : public testing::Test {
 protected:
  static std::string errorOf(const Value& value) {
    try {
      writeCachedList(CachedList::video, value);
    } catch (const CachedListError& error) {
      return error.what();
    }
    return "";
  }

  InstalledPlatform<OneFolderPlatform> platform_;
  Installed<Logger, RecordingLogger> log_;
};

TEST_F(CachedListsTest, ListIsADurableKeyedArchiveOfItsName) {
  const Value list = Value::list({Value::map({{"startdate", Date{.seconds = 1.5}}})});

  writeCachedList(CachedList::video, list);
  writeCachedList(CachedList::interstitial, "other");

  EXPECT_THAT(platform_->writes,
              ElementsAre("/d/TavloCache/VideoListAPI durable", "/d/TavloCache/InterstitialListAPI durable"));
  EXPECT_THAT(log_->lines, ElementsAre("Cached directory path : /d/TavloCache/VideoListAPI",
                                       "Cached directory path : /d/TavloCache/InterstitialListAPI"));
  EXPECT_EQ(keyed_archive::decode(*platform_->written), Value("other"));
}

TEST_F(CachedListsTest, NothingAtAllIsAListOfItsOwn) {
  writeCachedList(CachedList::video, Uid{});

  EXPECT_EQ(platform_->written, keyed_archive::encode(std::nullopt));
  EXPECT_EQ(keyed_archive::decode(*platform_->written), std::nullopt);
}

TEST_F(CachedListsTest, ValueThatNoArchiveHoldsIsAnErrorBeforeAnythingIsTouched) {
  const std::string error = errorOf(Value::list({Uid{.index = 7}}));

  EXPECT_THAT(error, testing::StartsWith("VideoListAPI was not written: "));
  EXPECT_THAT(error, testing::EndsWith("; give a value that a keyed archive of at most 4194304 bytes can hold"));
  EXPECT_THAT(platform_->writes, IsEmpty());
  EXPECT_THAT(log_->lines, IsEmpty());
}

TEST_F(CachedListsTest, MissingDirectoryIsAnError) {
  platform_->documents = "/read-only";

  EXPECT_EQ(errorOf(1),
            "VideoListAPI was not written: there is no cache directory for it, and none could be made; the log says "
            "why; check the rights to the Documents directory and the free space");
  EXPECT_THAT(log_->lines, ElementsAre("Couldn't create directory TavloCache error: read-only"));
}

TEST_F(CachedListsTest, WriteThatFailsIsAnErrorThatSaysWhy) {
  platform_->failure = "no space left on /d";

  EXPECT_EQ(errorOf(1),
            "VideoListAPI was not written: no space left on /d; check the rights to /d/TavloCache/VideoListAPI and the "
            "free space");
}

}  // namespace
}  // namespace tavlo::host
