// Files and user settings of the host's own, reached through the operations.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/c/Tables.h"

namespace tavlo::test {
namespace {

using ::testing::ElementsAre;

// What the host's file manager was asked, and what it answers. Its own pointer is one of these.
struct Files {
  std::vector<std::string> calls;
  std::map<std::string, std::string> contents;
  bool works = true;

  static Files& of(void* user) { return *static_cast<Files*>(user); }
  void called(const std::string& name, tavlo_text path) { calls.push_back(name + " " + asString(path)); }
  [[nodiscard]] bool result(tavlo_answer* error) const {
    if (works) return true;
    EXPECT_EQ(tavlo_answer_text(error, tavlo_text_of("out of order")), TAVLO_OK);
    return false;
  }
};

tavlo_file_manager fileManagerOf(Files& files) {
  auto made = table<tavlo_file_manager>();
  made.user = &files;
  made.documentDirectory = [](void*, tavlo_answer* path) {
    EXPECT_EQ(tavlo_answer_text(path, tavlo_text_of("/docs")), TAVLO_OK);
  };
  made.fileExistsAtPath = [](void* user, tavlo_text path) -> tavlo_existence {
    Files::of(user).called("exists", path);
    if (asString(path) == "/docs/TavloCache") return TAVLO_EXISTENCE_DIRECTORY;
    return Files::of(user).contents.contains(asString(path)) ? TAVLO_EXISTENCE_FILE : 99;
  };
  made.removeItemAtPath = [](void* user, tavlo_text path, bool fileOnly, tavlo_answer* error) {
    Files::of(user).called(fileOnly ? "removeFile" : "remove", path);
    return Files::of(user).result(error);
  };
  made.createDirectoryAtPath = [](void* user, tavlo_text path, tavlo_answer* error) {
    Files::of(user).called("create", path);
    return Files::of(user).result(error);
  };
  made.contentsOfDirectoryAtPath = [](void* user, tavlo_text path, tavlo_names* names) {
    Files::of(user).called("list", path);
    EXPECT_EQ(tavlo_names_add(names, tavlo_text_of("a")), TAVLO_OK);
    EXPECT_EQ(tavlo_names_add(names, tavlo_text_of(nullptr)), TAVLO_MISUSE);
    EXPECT_EQ(tavlo_names_add(names, tavlo_text_of("TavloLogFile.txt")), TAVLO_OK);
    return Files::of(user).works;
  };
  made.dataWithContentsOfFile = [](void* user, tavlo_text path, tavlo_answer* data) {
    Files::of(user).called("read", path);
    const std::string& bytes = Files::of(user).contents[asString(path)];
    EXPECT_EQ(tavlo_answer_text(data, {bytes.data(), bytes.size()}), TAVLO_OK);
  };
  made.writeToFileAtomically = [](void* user, tavlo_text bytes, tavlo_text path, bool durableName,
                                  tavlo_answer* error) {
    Files::of(user).called(durableName ? "writeName" : "write", path);
    Files::of(user).contents[asString(path)] = asString(bytes);
    return Files::of(user).result(error);
  };
  return made;
}

class CFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto fileManager = fileManagerOf(files_);
    auto platform = table<tavlo_platform>();
    platform.file_manager = &fileManager;
    ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
    auto logger = table<tavlo_logger>();
    logger.user = &lines_;
    logger.printLog = [](void* user, tavlo_text line) {
      static_cast<std::vector<std::string>*>(user)->push_back(asString(line));
    };
    ASSERT_EQ(tavlo_logger_install(&logger), TAVLO_OK);
  }
  void TearDown() override {
    tavlo_platform_install(nullptr);
    tavlo_logger_install(nullptr);
  }

  Files files_;
  std::vector<std::string> lines_;
};

TEST_F(CFiles, ALookUpAsksForTheDirectoryAndThenForTheFile) {
  files_.contents["/docs/TavloCache/v"] = "video";

  EXPECT_EQ(textOf(tavlo_getCacheVideoPathOfSavedInDB, tavlo_text_of("v")), "/docs/TavloCache/v");

  EXPECT_THAT(files_.calls, ElementsAre("exists /docs/TavloCache", "exists /docs/TavloCache/v"));
}

TEST_F(CFiles, AnAnswerThatIsNoExistenceIsMissing) {
  EXPECT_EQ(textOf(tavlo_getCacheVideoPathOfSavedInDB, tavlo_text_of("none")), "absent");
}

TEST_F(CFiles, AListIsReadFromTheHostsFile) {
  tavlo_string bytes{};
  ASSERT_EQ(tavlo_archive_encode(textValue("listed").get(), &bytes), TAVLO_OK);
  files_.contents["/docs/TavloCache/VideoListAPI"] = std::string(bytes.data, bytes.size);
  tavlo_string_free(&bytes);
  tavlo_value* list = nullptr;

  ASSERT_EQ(tavlo_getCachedVideoList(true, &list), TAVLO_OK);

  EXPECT_EQ(formOf(owned(list)), "listed");
  EXPECT_EQ(files_.calls.back(), "read /docs/TavloCache/VideoListAPI");
}

TEST_F(CFiles, ClearingRemovesWhatIsListedButTheLog) {
  EXPECT_EQ(tavlo_clearCache(), TAVLO_OK);

  EXPECT_THAT(files_.calls, ElementsAre("list /docs/TavloCache", "remove /docs/TavloCache/a"));
}

TEST_F(CFiles, AFailedListIsAbsent) {
  files_.works = false;

  EXPECT_EQ(tavlo_clearCache(), TAVLO_OK);

  EXPECT_THAT(files_.calls, ElementsAre("list /docs/TavloCache"));
}

TEST_F(CFiles, AFailedRemovalIsFalse) {
  bool removed = true;
  files_.works = false;
  EXPECT_EQ(tavlo_deleteCachedVideo(tavlo_text_of("/x"), &removed), TAVLO_OK);
  EXPECT_FALSE(removed);

  files_.works = true;
  EXPECT_EQ(tavlo_deleteCachedVideo(tavlo_text_of("/x"), &removed), TAVLO_OK);
  EXPECT_TRUE(removed);
}

TEST_F(CFiles, DescriptionsOfFailuresAreTheHosts) {
  const auto manager = platform::current();
  files_.works = false;

  const auto created = manager->fileManager().createDirectoryAtPath("/d");
  const auto removed = manager->fileManager().removeItemAtPath("/d", platform::Removal::fileOnly);
  const auto written = manager->fileManager().writeToFileAtomically("x", "/f", platform::Durable::name);

  EXPECT_EQ(created.description(), "out of order");
  EXPECT_FALSE(removed);
  EXPECT_FALSE(written);
  EXPECT_THAT(files_.calls, ElementsAre("create /d", "removeFile /d", "writeName /f"));
}

TEST_F(CFiles, AFailureWithoutADescriptionHasOne) {
  const auto empty = table<tavlo_file_manager>();
  auto platform = table<tavlo_platform>();
  platform.file_manager = &empty;
  ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);

  const auto created = platform::current()->fileManager().createDirectoryAtPath("/d");

  EXPECT_EQ(created.description(), "the host's file manager failed");
  EXPECT_EQ(textOf(tavlo_getDocumentDirectoryPath, tavlo_text_of("a")), "absent");
}

TEST(CSettings, ValuesOfAllKindsGoThroughTheHostsSettings) {
  static std::map<std::string, OwnedValue> kept;
  static std::vector<std::string> calls;
  auto settings = table<tavlo_user_defaults>();
  settings.objectForKey = [](void*, tavlo_text key) { return tavlo_value_copy(kept[asString(key)].get()); };
  settings.setObjectForKey = [](void*, const tavlo_value* value, tavlo_text key) {
    calls.push_back("set " + asString(key));
    kept[asString(key)] = owned(tavlo_value_copy(value));
  };
  settings.synchronize = [](void*) {
    calls.emplace_back("synchronize");
    return true;
  };
  auto platform = table<tavlo_platform>();
  platform.user_defaults = &settings;
  ASSERT_EQ(tavlo_platform_install(&platform), TAVLO_OK);
  kept["OptionalId"] = owned(tavlo_value_from_int64(42));

  EXPECT_EQ(tavlo_setAppIdToUserDefault(tavlo_text_of("app")), TAVLO_OK);

  EXPECT_EQ(textOf(tavlo_getAppIdFromUserDefault), "app");
  EXPECT_EQ(textOf(tavlo_getOptionalIdFromUserDefault), "42");
  EXPECT_EQ(textOf(tavlo_getSecurityKeyTFromUserDefault), "absent");
  EXPECT_THAT(calls, ElementsAre("set ApplicationId", "synchronize"));
  tavlo_platform_install(nullptr);
  kept.clear();
}

TEST_F(CFiles, ATruthOfAFailedOperationIsFalse) {
  bool removed = true;

  EXPECT_EQ(tavlo_deleteCachedVideo({.data = nullptr, .size = 1}, &removed), TAVLO_MISUSE);

  EXPECT_FALSE(removed);
}

}  // namespace
}  // namespace tavlo::test
