// Settings and a banner image on a disk that is full, or cannot be written for another reason, as the kernel has it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <memory>
#include <ostream>
#include <system_error>

#include "TavloUtility.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/SettingsStore.h"
#include "tests/host/FileSizeLimit.h"
#include "tests/support/CacheWorlds.h"
#include "tests/support/CaseName.h"
#include "tests/support/RecordingCollaborators.h"
#include "tests/support/RecordingPlatform.h"
#include "tests/support/Scale.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;
using linux_platform::SettingsStore;
using testing::ElementsAre;

// UndefinedBehaviorSanitizer looks at an object through a pipe, and takes one that it cannot look at for none.
#if defined(__has_feature)
constexpr bool kLooksThroughPipes = __has_feature(undefined_behavior_sanitizer);
#else
constexpr bool kLooksThroughPipes = false;
#endif

// What ends some trouble when it goes.
using Trouble = std::shared_ptr<void>;

Trouble endedBy(std::function<void()> end) {
  return {new char, [end = std::move(end)](char* mark) {
            end();
            delete mark;
          }};
}

void setDiskReadOnly(const fs::path& disk, bool isReadOnly) {
  const unsigned long flags = MS_REMOUNT | (isReadOnly ? MS_RDONLY : 0);
  EXPECT_EQ(::mount(nullptr, disk.c_str(), nullptr, flags, "size=65536"), 0) << std::generic_category().message(errno);
}

// A disk of 64 KiB that only this process sees; false without the right to have one.
bool mountDisk(const fs::path& folder) {
  return ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=65536,mode=0700") == 0;
}

Trouble fullDisk(const fs::path& disk) {
  const fs::path filler = disk / "filler";
  std::ofstream file(filler, std::ios::binary);
  const std::string page(4096, 'f');
  while (file.write(page.data(), static_cast<std::streamsize>(page.size())).flush()) {
  }
  return endedBy([filler] { fs::remove(filler); });
}

Trouble readOnlyDisk(const fs::path& disk) {
  setDiskReadOnly(disk, true);
  return endedBy([disk] { setDiskReadOnly(disk, false); });
}

Trouble sizeLimit(const fs::path&) { return std::make_shared<FileSizeLimit>(4096); }

// Permissions do not hold the superuser back, so that it acts as somebody else.
Trouble readOnlyFolders(const fs::path& folder) {
  constexpr uid_t kNobody = 65534;
  const bool isSuperuser = ::geteuid() == 0;
  std::vector<fs::path> all{folder};
  for (const auto& entry : fs::recursive_directory_iterator(folder)) all.push_back(entry.path());
  for (const fs::path& path : all) {
    EXPECT_TRUE(!isSuperuser || ::chown(path.c_str(), kNobody, 0) == 0);
    if (fs::is_directory(path)) fs::permissions(path, fs::perms(0500));
  }
  EXPECT_TRUE(!isSuperuser || ::seteuid(kNobody) == 0);
  return endedBy([all, isSuperuser] {
    EXPECT_TRUE(!isSuperuser || ::seteuid(0) == 0);
    for (const fs::path& path : all) {
      if (fs::is_directory(path)) fs::permissions(path, fs::perms(0700));
    }
  });
}

Trouble noDescriptors(const fs::path&) {
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  const int lowestFree = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::close(lowestFree);
  const rlimit limit{.rlim_cur = static_cast<rlim_t>(lowestFree), .rlim_max = before.rlim_max};
  EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  return endedBy([before] { EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0); });
}

struct Case {
  const char* name;
  Trouble (*begin)(const fs::path& folder);
  bool needsDisk;
};

void PrintTo(const Case& row, std::ostream* out) { *out << row.name; }

const std::string kUrl = "http://h/a.png";
const std::string kImage = "9ef778804fd929ca71a038547aea542b";  // the digest of kUrl
const std::string kOlder(3000, 'o');

// The real files of one container; tasks run at once; the image has the bytes that it is given.
class OneImagePlatform final : public platform::Platform, platform::BackgroundQueue, platform::UrlData {
 public:
  explicit OneImagePlatform(const Container& container) : files_(container) {}

  platform::FileManager& fileManager() override { return files_; }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return *this; }

  std::string image;

 private:
  void dispatchAsync(std::function<void()> task) override { task(); }
  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override { return image; }

  linux_platform::LinuxFileManager files_;
};

class DiskTrouble : public testing::TestWithParam<Case> {
 protected:
  // Ends the test where it cannot be: without a disk of its own, or without descriptors for others.
  void SetUp() override {
    if (kLooksThroughPipes && GetParam().begin == noDescriptors) GTEST_SKIP() << "the sanitizer needs descriptors";
    if (!GetParam().needsDisk) return;
    isMounted_ = mountDisk(folder_.path());
    if (!isMounted_) GTEST_SKIP() << "no disk can be mounted here: " << std::generic_category().message(errno);
  }
  void TearDown() override {
    if (isMounted_) ::umount2(folder_.path().c_str(), MNT_DETACH);
  }

  [[nodiscard]] Trouble begin() const { return GetParam().begin(folder_.path()); }
  [[nodiscard]] bool hasTemporaries() const { return !fs::is_empty(container_.temporary()); }

  TemporaryFolder folder_;
  Container container_ = *Container::locate(folder_.path(), "player");
  bool isMounted_ = false;
};

INSTANTIATE_TEST_SUITE_P(Real, DiskTrouble,
                         testing::Values(Case{"FullDisk", fullDisk, true}, Case{"ReadOnlyDisk", readOnlyDisk, true},
                                         Case{"FileSizeLimit", sizeLimit, false},
                                         Case{"ReadOnlyFolders", readOnlyFolders, false},
                                         Case{"NoDescriptors", noDescriptors, false}),
                         kCaseName);

TEST_P(DiskTrouble, LeavesTheOldSettingsWholeAndIsOverWithTheNextSet) {
  RecordingPlatform recorder;
  SettingsStore defaults(container_, recorder.console());
  defaults.setObjectForKey("old", "k");
  ASSERT_TRUE(defaults.synchronize());
  const std::string before = readFile(container_.settingsFile());
  const std::string longText(16'384, 'n');
  {
    const Trouble trouble = begin();
    defaults.setObjectForKey(longText, "k");
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(defaults.objectForKey("k"), Value(longText));
  }

  EXPECT_EQ(readFile(container_.settingsFile()), before);
  EXPECT_FALSE(hasTemporaries());
  EXPECT_TRUE(defaults.synchronize());
  EXPECT_EQ(SettingsStore(container_, recorder.console()).objectForKey("k"), Value(longText));
  EXPECT_FALSE(hasTemporaries());
  EXPECT_THAT(recorder.consoleLines(), testing::IsEmpty());
  reached("T4", "1 kinds of trouble of a disk that left settings whole");
}

TEST_P(DiskTrouble, OfALargeImageIsToldAndLeavesTheOlderOne) {
  const InstalledPlatform<OneImagePlatform> platform(container_);
  platform->image = kOlder;
  TavloUtility::cachedBannerImage(kUrl);
  const fs::path image = container_.documents() / "TavloCache" / kImage;
  ASSERT_EQ(readFile(image), kOlder);
  const Installed<Logger, RecordingLogger> lines;
  platform->image = std::string(1'048'576, 'n');
  {
    const Trouble trouble = begin();
    TavloUtility::cachedBannerImage(kUrl);
  }

  EXPECT_THAT(lines->lines, ElementsAre("Cached directory path : " + image.string(),
                                        "getAndSaveBannerImage(): ERROR - write failed"));
  EXPECT_EQ(readFile(image), kOlder);
  EXPECT_FALSE(hasTemporaries());
  platform->image = "small";
  TavloUtility::cachedBannerImage(kUrl);
  EXPECT_EQ(lines->lines.back(), "getAndSaveBannerImage() - write successfully");
  EXPECT_EQ(readFile(image), "small");
  EXPECT_FALSE(hasTemporaries());
  reached("T4", "1 kinds of trouble of a disk that left the older image for one of 1 MiB");
}

}  // namespace
}  // namespace tavlo::test
