// What cache clear says of what it could not remove.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "cli/Commands.h"
#include "cli/Errors.h"
#include "common/Logger.h"
#include "platform/Platform.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

class CacheClear : public testing::Test {
 protected:
  ~CacheClear() override {
    platform::install(nullptr);
    Logger::install(nullptr);
  }

  [[nodiscard]] std::string errorOfClearing() const {
    Globals globals;
    globals.container = folder_.path().string();
    Output output(true, Color::never);
    try {
      execute(ClearCache{}, cli::Run{.globals = globals, .output = output});
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "";
  }

  const tavlo::test::TemporaryFolder folder_;
  const fs::path cache_ = folder_ / "Documents/TavloCache";
};

TEST_F(CacheClear, WhatIsNoDirectoryIsAFailure) {
  fs::create_directories(cache_.parent_path());
  tavlo::test::writeFile(cache_, "in the way");

  EXPECT_EQ(errorOfClearing(), "cannot read the cache directory " + cache_.string() +
                                   ": Not a directory; check that it is a folder, and the rights to it");
}

TEST_F(CacheClear, WhatIsLeftIsAFailure) {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) GTEST_SKIP() << "needs to be started by the superuser, to step down";
  fs::create_directories(cache_);
  tavlo::test::writeFile(cache_ / "TavloLogFile.txt", "");
  tavlo::test::writeFile(cache_ / "image", "1");
  fs::permissions(folder_.path(), fs::perms(0755));

  ASSERT_EQ(::seteuid(kNobody), 0);
  const std::string error = errorOfClearing();
  ASSERT_EQ(::seteuid(0), 0);

  EXPECT_EQ(error, "\"image\" is still, or again, in " + cache_.string() +
                       "; check the rights to it, and what else writes there");
  EXPECT_TRUE(fs::exists(cache_ / "image"));
  EXPECT_EQ(errorOfClearing(), "");
  EXPECT_FALSE(fs::exists(cache_ / "image"));
}

}  // namespace
}  // namespace tavlo::cli
