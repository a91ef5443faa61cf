#include <string>

#include "common/Logger.h"
#include "common/TavloException.h"
#include "host/Host.h"
#include "tests/host/Times.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using test::at;
using testing::Optional;
using testing::SizeIs;

class HostTest : public testing::Test {
 protected:
  void TearDown() override {
    Logger::install(nullptr);
    TavloException::install(nullptr);
    TavloPackage::install(nullptr);
    TavloUniqueUserHandler::install(nullptr);
    DataBaseHandler::install(nullptr);
  }

  [[nodiscard]] static host::Clock clock() {
    return [] { return at(2026, 11, 16); };
  }

  const test::TemporaryFolder folder;
  const fs::path container = folder / "app" / "container";
};

TEST_F(HostTest, EverythingIsInstalledAndStaysSoWhenTheHostIsGone) {
  fs::create_directories(container / "Documents" / "TavloCache");
  {
    Host host(container, clock());
    host.session().set(PackageText::app_version, "1.4");
    host.counters().recordUse();
    host.tracker().addEvent("network-7", "impression");
  }

  TavloException::tavloException("a reason");

  EXPECT_THAT(TavloPackage::sharedInstance()->app_version(), Optional(std::string("1.4")));
  EXPECT_THAT(TavloUniqueUserHandler::getUniqueUserDay(), Optional(std::string("320")));
  EXPECT_THAT(DataBaseHandler::sharedInastance()->getNetworkTrackerDetails(), Optional(SizeIs(1)));
  EXPECT_EQ(test::readFile(container / "Documents" / "TavloCache" / "TavloLogFile.txt"),
            "2026-11-16T00:00:00.000Z a reason\n");
}

TEST_F(HostTest, MissingFoldersAreMadeForTheirOwnerAlone) {
  const Host host(container, clock());

  for (const char* const made : {"app", "app/container", "app/container/Library"}) {
    EXPECT_EQ(fs::status(folder / made).permissions(), fs::perms(0700)) << made;
  }
  EXPECT_EQ(fs::status(container / "Library" / "tracker.sqlite").permissions(), fs::perms(0600));
  EXPECT_FALSE(fs::exists(container / "Documents"));
}

TEST_F(HostTest, FoldersThatAreThereKeepTheirPermissions) {
  fs::create_directories(container / "Library");
  fs::permissions(container / "Library", fs::perms(0755));

  const Host host(container, clock());

  EXPECT_EQ(fs::status(container / "Library").permissions(), fs::perms(0755));
}

TEST_F(HostTest, WhatWasRecordedIsThereForTheNextHost) {
  {
    Host host(container, clock());
    host.counters().recordUse();
    host.tracker().addEvent("network-7", "impression", 3);
  }

  Host host(container, clock());

  EXPECT_EQ(host.counters().isUserNew(), 1);
  EXPECT_EQ(host.tracker().list(), (std::vector<TrackerEvent>{{"network-7", "impression", 3}}));
  EXPECT_EQ(host.session().applicationId(), std::nullopt);
}

TEST_F(HostTest, NothingIsInstalledWhenTheDatabaseCannotBeOpened) {
  fs::create_directories(container / "Library");
  test::writeFile(container / "Library" / "tracker.sqlite", "no database");

  EXPECT_THROW(Host(container, clock()), DatabaseError);

  EXPECT_EQ(Logger::installed(), nullptr);
  EXPECT_EQ(TavloException::installed(), nullptr);
  EXPECT_EQ(TavloPackage::sharedInstance(), nullptr);
  EXPECT_EQ(TavloUniqueUserHandler::installed(), nullptr);
  EXPECT_EQ(DataBaseHandler::sharedInastance(), nullptr);
}

TEST_F(HostTest, AFileInPlaceOfAFolderIsADatabaseError) {
  fs::create_directories(container);
  test::writeFile(container / "Library", "");

  EXPECT_THROW(Host(container, clock()), DatabaseError);
}

}  // namespace
}  // namespace tavlo::host
