// Every system call of what writes to the media cache failing in turn, with every error: the answer and the lines are
// the documented ones, what was there is there or has been replaced whole, and the next time all is well.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <functional>
#include <ostream>
#include <system_error>

#include "TavloUtility.h"
#include "cache/KeyedArchive.h"
#include "host/CachedLists.h"
#include "tests/integration/CacheFaultScene.h"
#include "tests/support/CaseName.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

constexpr auto kErrors = std::to_array<int>({EIO, ENOSPC, EDQUOT, EACCES, EROFS, EMFILE, EINTR});

const std::string kBody = FaultyPlatform::kBody;
const std::string kUrl = "http://h/a.png";
const std::string kImage = "9ef778804fd929ca71a038547aea542b";  // the digest of kUrl

using Scene = CacheFaultScene;

struct Fault {
  std::string call;  // "" is none
  int error = 0;

  [[nodiscard]] bool isIn(const std::string& start) const { return call.starts_with(start); }
  [[nodiscard]] std::string reason() const { return std::generic_category().message(error) + ": DOCUMENTS/TavloCache"; }
};

struct Outcome {
  Lines told;
  std::string left;
};

struct Operation {
  const char* name;
  std::function<void(Scene&)> prepare;
  std::function<std::string(Scene&)> run;
  std::function<std::string(Scene&)> left;
  std::function<Outcome(const Fault&)> outcome;
  std::size_t calls;  // at least
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

const std::string kCreated = "TavloCache directory created!";
const std::string kInTheWay = "TavloCache directory is actually a file! .. removing it";
const std::string kStillInTheWay = "TavloCache directory is actually a file! .. but failed removing it error: ";
const std::string kNotCreated = "Couldn't create directory TavloCache error: ";
const std::string kPath = "Cached directory path : DOCUMENTS/TavloCache/";
// The directory could not be looked at, so that it was to be made.
const std::string kUnseen = kNotCreated + "File exists: DOCUMENTS/TavloCache";

// A fault in what only tidies up, and an interruption of any call but fsync, whose failure is final, is no failure.
bool isHarmless(const Fault& fault) {
  if (fault.call.empty()) return true;
  if (fault.isIn("fsync")) return false;
  return fault.error == EINTR || fault.isIn("close") || fault.isIn("folderNames tmp");
}

bool isUnseen(const Fault& fault) { return fault.call == "stat Documents/TavloCache"; }

Operation bannerWrite() {
  return {"ABannerImage",
          [](Scene& scene) { scene.put({kImage}); },
          [](Scene&) { return TavloUtility::cachedBannerImage(kUrl), "done"; },
          [](Scene& scene) { return readFile(scene.cache("/" + kImage)); },
          [](const Fault& fault) -> Outcome {
            if (isHarmless(fault))
              return {{"done", kPath + kImage, "getAndSaveBannerImage() - write successfully"}, kBody};
            if (isUnseen(fault)) return {{"done", kUnseen}, "old"};
            return {{"done", kPath + kImage, "getAndSaveBannerImage(): ERROR - write failed"}, "old"};
          },
          11};
}

std::string writeList() {
  try {
    host::writeCachedList(host::CachedList::video, "new");
    return "written";
  } catch (const host::CachedListError& error) {
    return error.what();
  }
}

// The name is flushed after the rename: when only that fails, the new list stands.
Operation listWrite() {
  const auto list = [](Scene& scene) {
    const std::string bytes = readFile(scene.cache("/VideoListAPI"));
    return bytes == "old" ? bytes : keyed_archive::decode(bytes) == Value("new") ? "new" : "damaged";
  };
  return {
      "AList",
      [](Scene& scene) { scene.put({"VideoListAPI"}); },
      [](Scene&) { return writeList(); },
      list,
      [](const Fault& fault) -> Outcome {
        const std::string failed = "VideoListAPI was not written: ";
        if (isHarmless(fault)) return {{"written", kPath + "VideoListAPI"}, "new"};
        if (isUnseen(fault)) {
          return {{failed + "there is no cache directory for it, and none could be made; the log says why; check the "
                            "rights to the Documents directory and the free space",
                   kUnseen},
                  "old"};
        }
        const bool isRenamed = fault.call == "open Documents/TavloCache" || fault.call == "fsync Documents/TavloCache";
        return {{failed + fault.reason() +
                     "/VideoListAPI; check the rights to DOCUMENTS/TavloCache/VideoListAPI and the free space",
                 kPath + "VideoListAPI"},
                isRenamed ? "new" : "old"};
      },
      14};
}

std::string shownPath() { return TavloUtility::getDocumentDirectoryPath("a").value_or("absent"); }

Operation directoryMaking() {
  return {"ADirectory",
          [](Scene& scene) { fs::remove_all(scene.cache()); },
          [](Scene&) { return shownPath(); },
          [](Scene& scene) { return fs::is_directory(scene.cache()) ? "directory" : "nothing"; },
          [](const Fault& fault) -> Outcome {
            const bool isMade = isHarmless(fault) || !fault.isIn("mkdir");
            if (isMade) return {{"DOCUMENTS/TavloCache/a", kCreated, kPath + "a"}, "directory"};
            return {{"absent", kNotCreated + fault.reason()}, "nothing"};
          },
          2};
}

Operation fileInTheWay() {
  return {"ADirectoryInTheWayOfWhichIsAFile",
          [](Scene& scene) {
            fs::remove_all(scene.cache());
            writeFile(scene.cache(), "in the way");
          },
          [](Scene&) { return shownPath(); },
          [](Scene& scene) {
            return fs::is_directory(scene.cache()) ? "directory" : fs::exists(scene.cache()) ? "file" : "nothing";
          },
          [](const Fault& fault) -> Outcome {
            if (isHarmless(fault)) return {{"DOCUMENTS/TavloCache/a", kInTheWay, kCreated, kPath + "a"}, "directory"};
            if (isUnseen(fault)) return {{"absent", kUnseen}, "file"};
            if (fault.isIn("unlink")) return {{"absent", kInTheWay, kStillInTheWay + fault.reason()}, "file"};
            return {{"absent", kInTheWay, kNotCreated + fault.reason()}, "nothing"};
          },
          3};
}

class CacheFault : public testing::TestWithParam<Operation> {
 protected:
  // What becomes of the operation with the n-th call failing; no fault was met when it is the empty one.
  Fault failAt(std::size_t n, int error) {
    Fault fault;
    GetParam().prepare(scene_);
    scene_.start();
    scene_.syscalls.setHook([&, left = n](const std::string& call) mutable {
      if (left-- != 0) return 0;
      fault = {.call = call, .error = error};
      return error;
    });
    const std::string answer = GetParam().run(scene_);
    scene_.syscalls.setHook(nullptr);

    const auto [told, left] = GetParam().outcome(fault);
    EXPECT_EQ(scene_.told(answer), told) << fault.call;
    EXPECT_EQ(GetParam().left(scene_), left) << fault.call;
    EXPECT_LE(scene_.syscalls.count("fsync tmp/"), 1U) << "a failed fsync is final";
    EXPECT_FALSE(scene_.hasTemporaries()) << fault.call;
    return fault;
  }

  void repeat() {
    const auto [told, left] = GetParam().outcome({});
    GetParam().prepare(scene_);
    EXPECT_EQ(scene_.told(GetParam().run(scene_)), told);
    EXPECT_EQ(GetParam().left(scene_), left);
    EXPECT_FALSE(scene_.hasTemporaries());
  }

  Scene scene_;
};

INSTANTIATE_TEST_SUITE_P(Of, CacheFault, testing::Values(bannerWrite(), listWrite(), directoryMaking(), fileInTheWay()),
                         kCaseName);

TEST_P(CacheFault, AtAnyCallIsToldAndHarmsNothingAndIsOverWithTheNextTime) {
  std::size_t faults = 0;
  for (const int error : kErrors) {
    std::size_t n = 0;
    for (; !failAt(n, error).call.empty(); ++n) repeat();
    EXPECT_GE(n, GetParam().calls) << error;
    faults += n;
  }
  reached("T3", std::to_string(faults) + " faults of calls for the media cache");
}

struct Writing {
  const char* name;
  Operation operation;
  std::size_t size;  // of what it writes, in bytes
};

class CacheShortWrite : public testing::TestWithParam<Writing> {};

INSTANTIATE_TEST_SUITE_P(Of, CacheShortWrite,
                         testing::Values(Writing{"ABannerImage", bannerWrite(), kBody.size()},
                                         Writing{"AList", listWrite(), keyed_archive::encode(Value("new")).size()}),
                         kCaseName);

TEST_P(CacheShortWrite, IsContinuedAndOneOfNothingFails) {
  const auto& [name, operation, size] = GetParam();
  for (const std::size_t written : {std::size_t{0}, std::size_t{1}, size / 2, size - 1}) {
    SCOPED_TRACE(written);
    Scene scene;
    operation.prepare(scene);
    scene.syscalls.shortenOnce(written);

    const std::string answer = operation.run(scene);

    const Fault fault = written == 0 ? Fault{.call = "write", .error = EIO} : Fault{};
    EXPECT_EQ(scene.told(answer), operation.outcome(fault).told);
    EXPECT_EQ(operation.left(scene), operation.outcome(fault).left);
    EXPECT_FALSE(scene.hasTemporaries());
  }
}

// As much as can be goes, without a line; the rest goes the next time.
TEST(CacheFaults, AtAnyCallOfAClearingLeaveTheLogAndNothingThatTheNextOneDoesNotTake) {
  std::size_t faults = 0;
  for (const int error : kErrors) {
    for (std::size_t n = 0;; ++n, ++faults) {
      Scene scene;
      scene.put({"TavloLogFile.txt", "a", "folder/b", "folder/c"});
      std::string failed;
      scene.syscalls.setHook([&, left = n](const std::string& call) mutable {
        if (left-- != 0) return 0;
        failed = call;
        return error;
      });

      TavloUtility::clearCache();

      scene.syscalls.setHook(nullptr);
      EXPECT_EQ(scene.told("done"), Lines{"done"}) << failed;
      EXPECT_EQ(readFile(scene.cache("/TavloLogFile.txt")), "old") << failed;
      if (failed == "folderNames Documents/TavloCache") {
        EXPECT_TRUE(fs::exists(scene.cache("/folder/c")));
      } else if (isHarmless({.call = failed, .error = error}) && !failed.starts_with("openFolderNames")) {
        EXPECT_EQ(scene.left(), "TavloLogFile.txt ") << failed;
      }
      TavloUtility::clearCache();
      EXPECT_EQ(scene.left(), "TavloLogFile.txt ") << failed;
      if (failed.empty()) break;
    }
  }
  EXPECT_GE(faults, kErrors.size() * 8);
  reached("T3", std::to_string(faults) + " faults of calls for the media cache");
}

}  // namespace
}  // namespace tavlo::test
