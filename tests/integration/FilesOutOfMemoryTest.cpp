// Files and background tasks of the Linux platform without memory, at every place where they ask for some.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <new>

#include "platform/linux/AtomicFile.h"
#include "platform/linux/WorkerQueue.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/Scale.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using Lasts = OutOfMemory::Lasts;

// A temporary was made before there was memory to remember its name, and then stayed until the next write.
TEST(AtomicFileOutOfMemory, LeavesTheOldFileOrTheNewOneAndNoTemporary) {
  const TemporaryFolder folder(TemporaryFolder::inMemory());
  fs::create_directory(folder / "tmp");
  const fs::path temporary = folder / "tmp";
  const fs::path target = folder / "target";
  int failures = 0;
  bool ranOut = true;
  for (int allocations = 0; ranOut; ++allocations) {
    writeFile(target, "old");

    OutOfMemory memory(allocations, Lasts::once);
    bool written = false;
    try {
      written = linux_platform::replaceFile(linux_platform::Syscalls::real(), temporary, target, "new");
    } catch (const std::bad_alloc&) {
    }
    ranOut = memory.end();

    const std::string found = readFile(target);
    EXPECT_TRUE(found == "new" || (!written && found == "old")) << allocations << " " << found;
    EXPECT_TRUE(fs::is_empty(temporary)) << allocations;
    EXPECT_EQ(ranOut, !written) << allocations;
    failures += ranOut ? 1 : 0;
  }
  EXPECT_GE(failures, 5);
}

// A queue that had no memory for its first worker kept silent, and dropped the task.
TEST(WorkerQueueOutOfMemoryThread, RunsEachTaskThatItTookAndThrowsForTheOthers) {
  bool ranOut = true;
  for (int allocations = 0; ranOut; ++allocations) {
    bool thrown = false;
    bool run = false;
    std::promise<void> done;
    linux_platform::WorkerQueue queue(1);
    // It takes a std::call_once() whose function has thrown for one that is never done.
    if (kUnderThreadSanitizer) queue.dispatchAsync([] {});

    std::function<void()> task = [&run] { run = true; };
    OutOfMemory memory(allocations, Lasts::once);
    try {
      queue.dispatchAsync(std::move(task));
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    ranOut = memory.end();
    queue.dispatchAsync([&] { done.set_value(); });
    done.get_future().wait();

    EXPECT_EQ(run, !thrown) << allocations;
  }
}

}  // namespace
}  // namespace tavlo::test
