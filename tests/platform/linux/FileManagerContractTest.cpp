// What holds for every file manager: the one on disk and the fake that other tests stand on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/LinuxFileManager.h"
#include "tests/support/MemoryFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using platform::Durable;
using platform::Existence;
using platform::Removal;
using testing::UnorderedElementsAre;

class OnDisk {
 public:
  platform::FileManager& files() { return files_; }

 private:
  TemporaryFolder folder_;
  linux_platform::LinuxFileManager files_{*linux_platform::Container::locate(folder_.path(), "player")};
};

class InMemory {
 public:
  platform::FileManager& files() { return files_; }

 private:
  MemoryFileManager files_;
};

template <class Place>
class FileManagerContract : public testing::Test {
 protected:
  // A folder with a file in it, and a file beside it.
  FileManagerContract() {
    EXPECT_TRUE(files_.createDirectoryAtPath(at("folder")));
    EXPECT_TRUE(files_.writeToFileAtomically("inner", at("folder/inner"), Durable::contents));
    EXPECT_TRUE(files_.writeToFileAtomically("bytes", at("file"), Durable::name));
  }
  [[nodiscard]] Text at(const std::string& name) { return *files_.documentDirectory() + "/" + name; }

  Place place_;
  platform::FileManager& files_ = place_.files();
};

using Places = testing::Types<InMemory, OnDisk>;
TYPED_TEST_SUITE(FileManagerContract, Places);

TYPED_TEST(FileManagerContract, ExistenceIsOneOfThree) {
  EXPECT_EQ(this->files_.fileExistsAtPathIsDirectory(this->files_.documentDirectory()), Existence::directory);
  EXPECT_EQ(this->files_.fileExistsAtPathIsDirectory(this->at("folder")), Existence::directory);
  EXPECT_EQ(this->files_.fileExistsAtPathIsDirectory(this->at("file")), Existence::file);
  EXPECT_EQ(this->files_.fileExistsAtPathIsDirectory(this->at("gone")), Existence::missing);
  EXPECT_EQ(this->files_.fileExistsAtPathIsDirectory(std::nullopt), Existence::missing);
  EXPECT_TRUE(this->files_.fileExistsAtPath(this->at("folder")));
  EXPECT_TRUE(this->files_.fileExistsAtPath(this->at("file")));
  EXPECT_FALSE(this->files_.fileExistsAtPath(this->at("gone")));
}

TYPED_TEST(FileManagerContract, ADirectoryIsMadeOnceAndOnlyInOneThatIsThere) {
  EXPECT_FALSE(this->files_.createDirectoryAtPath(this->at("folder")));
  EXPECT_FALSE(this->files_.createDirectoryAtPath(this->at("file")));
  EXPECT_FALSE(this->files_.createDirectoryAtPath(this->at("gone/new")));
  EXPECT_FALSE(this->files_.createDirectoryAtPath(std::nullopt));
  EXPECT_TRUE(this->files_.createDirectoryAtPath(this->at("folder/new")));
}

TYPED_TEST(FileManagerContract, ContentsAreTheNamesDirectlyInADirectory) {
  ASSERT_TRUE(this->files_.createDirectoryAtPath(this->at("folder/.sub")));
  ASSERT_TRUE(this->files_.writeToFileAtomically("x", this->at("folder/.sub/x"), Durable::contents));

  EXPECT_THAT(this->files_.contentsOfDirectoryAtPath(this->at("folder")).value(),
              UnorderedElementsAre("inner", ".sub"));
  EXPECT_EQ(this->files_.contentsOfDirectoryAtPath(this->at("file")), std::nullopt);
  EXPECT_EQ(this->files_.contentsOfDirectoryAtPath(this->at("gone")), std::nullopt);
}

TYPED_TEST(FileManagerContract, DataAreThoseOfAFile) {
  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("file")), "bytes");
  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("folder")), std::nullopt);
  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("gone")), std::nullopt);
}

TYPED_TEST(FileManagerContract, AWriteReplacesAFileAndNoDirectory) {
  EXPECT_TRUE(this->files_.writeToFileAtomically("", this->at("file"), Durable::contents));
  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("file")), "");

  EXPECT_FALSE(this->files_.writeToFileAtomically("x", this->at("folder"), Durable::contents));
  EXPECT_FALSE(this->files_.writeToFileAtomically("x", this->at("gone/file"), Durable::contents));
  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("folder/inner")), "inner");
}

TYPED_TEST(FileManagerContract, ARemovalOfFilesTakesNoDirectory) {
  EXPECT_FALSE(this->files_.removeItemAtPath(this->at("folder"), Removal::fileOnly));
  EXPECT_TRUE(this->files_.removeItemAtPath(this->at("file"), Removal::fileOnly));

  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("folder/inner")), "inner");
  EXPECT_FALSE(this->files_.fileExistsAtPath(this->at("file")));
}

TYPED_TEST(FileManagerContract, ARemovalTakesADirectoryWithAllInIt) {
  EXPECT_TRUE(this->files_.removeItemAtPath(this->at("folder"), Removal::anything));
  EXPECT_TRUE(this->files_.removeItemAtPath(this->at("file"), Removal::anything));

  EXPECT_THAT(this->files_.contentsOfDirectoryAtPath(this->files_.documentDirectory()).value(), UnorderedElementsAre());
  EXPECT_FALSE(this->files_.removeItemAtPath(this->at("folder"), Removal::anything));
}

TYPED_TEST(FileManagerContract, ItemsOfADirectoryAreRemovedByTheirNames) {
  this->files_.removeItemsOfDirectoryAtPath(this->files_.documentDirectory(), {"gone", "folder", "file"});

  EXPECT_THAT(*this->files_.contentsOfDirectoryAtPath(this->files_.documentDirectory()), UnorderedElementsAre());
}

TYPED_TEST(FileManagerContract, OnlyTheItemsNamedAreRemoved) {
  this->files_.removeItemsOfDirectoryAtPath(this->at("folder"), {"file"});
  this->files_.removeItemsOfDirectoryAtPath(this->files_.documentDirectory(), {});
  this->files_.removeItemsOfDirectoryAtPath(std::nullopt, {"file"});
  this->files_.removeItemsOfDirectoryAtPath(this->at("gone"), {"file"});
  this->files_.removeItemsOfDirectoryAtPath(this->at("folder"), {"", "/", "//", "../file", "/../file", "inner/"});
  this->files_.removeItemsOfDirectoryAtPath(this->files_.documentDirectory(), {"", "/", "folder/inner", "/file"});

  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("file")), "bytes");
  EXPECT_EQ(this->files_.dataWithContentsOfFile(this->at("folder/inner")), "inner");
}

}  // namespace
}  // namespace tavlo::test
