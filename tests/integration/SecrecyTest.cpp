// What others on the device can learn: who may read what lies on the disk, and what the console tells.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "host/CachedLists.h"
#include "host/FixedPosition.h"
#include "host/Host.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "request/PackageReads.h"
#include "tests/integration/AwaitedLogger.h"
#include "tests/integration/RealContainer.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo {
namespace {

namespace fs = std::filesystem;
using test::AwaitedLogger;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Umask {
 public:
  explicit Umask(mode_t mask) : before_(::umask(mask)) {}
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;
  ~Umask() { ::umask(before_); }

 private:
  mode_t before_;
};

// A folder and all that is in it, each with its mode, sorted.
std::vector<std::string> modesIn(const fs::path& root) {
  std::vector<std::string> lines;
  const auto add = [&](const fs::path& path) {
    std::array<char, 8> mode{};
    std::snprintf(mode.data(), mode.size(), " %04o", static_cast<unsigned>(fs::symlink_status(path).permissions()));
    lines.push_back(path.lexically_relative(root).string() + mode.data());
  };
  add(root);
  for (const auto& entry : fs::recursive_directory_iterator(root)) add(entry.path());
  std::sort(lines.begin(), lines.end());
  return lines;
}

class Secrecy : public testing::Test {
 protected:
  // No menu on the desktop of whoever runs this.
  Secrecy() {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
  }
  ~Secrecy() override { test::emptySlots(); }

  const test::TemporaryFolder folder_;
  const fs::path container_ = folder_ / "outer/box";
};

struct UmaskCase {
  const char* name;
  mode_t mask;
};

class SecrecyUnderUmask : public Secrecy, public testing::WithParamInterface<UmaskCase> {};

TEST_P(SecrecyUnderUmask, WhateverIsMadeIsItsUsersAlone) {
  const Umask mask(GetParam().mask);
  test::writeFile(folder_ / "banner", "image");
  platform::install(linux_platform::make({.container = container_, .domain = "player", .quietConsole = true}));
  host::Host host(container_);

  TavloUtility::setAppIdToUserDefault("app");
  test::writeFile(container_ / "Library/Preferences/player.plist", "no settings any more");
  TavloUtility::setAppIdToUserDefault("app");
  host.counters().recordUse();
  host::writeCachedList(host::CachedList::video, Value::list({}));  // with a line in the log
  const auto logger = std::make_shared<AwaitedLogger>();
  Logger::install(logger);
  TavloUtility::cachedBannerImage("file://" + (folder_ / "banner").string());
  EXPECT_THAT(logger->takeAfter(1), testing::Contains("getAndSaveBannerImage() - write successfully"));

  const std::string image = *TavloUtility::md5(Value("file://" + (folder_ / "banner").string()));
  auto modes = modesIn(folder_ / "outer");
  EXPECT_EQ(std::erase(modes, "box/Documents/TavloCache/" + image + " 0600"), 1U);
  EXPECT_THAT(
      modes,
      ElementsAre(". 0700", "box 0700", "box/Documents 0700", "box/Documents/TavloCache 0700",
                  "box/Documents/TavloCache/TavloLogFile.txt 0600", "box/Documents/TavloCache/VideoListAPI 0600",
                  "box/Library 0700", "box/Library/Preferences 0700", "box/Library/Preferences/player.plist 0600",
                  "box/Library/Preferences/player.plist.damaged 0600", "box/Library/Preferences/player.plist.lock 0600",
                  "box/Library/tracker.sqlite 0600", "box/Library/tracker.sqlite-shm 0600",
                  "box/Library/tracker.sqlite-wal 0600", "box/tmp 0700"));
}

INSTANTIATE_TEST_SUITE_P(, SecrecyUnderUmask,
                         testing::Values(UmaskCase{"None", 0}, UmaskCase{"TheUsual", 022}, UmaskCase{"Strict", 077}),
                         test::kCaseName);

// Standard error, kept in a file as long as this lives.
class CapturedConsole {
 public:
  explicit CapturedConsole(fs::path file) : file_(std::move(file)), before_(::dup(STDERR_FILENO)) {
    const int captured = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    ::dup2(captured, STDERR_FILENO);
    ::close(captured);
  }
  CapturedConsole(const CapturedConsole&) = delete;
  CapturedConsole& operator=(const CapturedConsole&) = delete;
  ~CapturedConsole() {
    ::dup2(before_, STDERR_FILENO);
    ::close(before_);
  }

  [[nodiscard]] std::string text() const { return test::readFile(file_); }

 private:
  fs::path file_;
  int before_;
};

// Answers at once: with a place, and with an error from the second time on.
class AnsweringGeocoder final : public platform::Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<platform::Location>& /*location*/,
                              platform::GeocodeCompletionHandler completionHandler) override {
    if (asked_++ > 0) return completionHandler(std::nullopt, "no such place");
    completionHandler(platform::Placemarks{{.country = "MARK-COUNTRY", .thoroughfare = "MARK-STREET"}}, std::nullopt);
  }

 private:
  int asked_ = 0;
};

// A host all of whose texts bear a mark; those of the contract's console lines a mark of their own.
class MarkedHost {
 public:
  explicit MarkedHost(const fs::path& container) {
    platform::install(linux_platform::make({.container = container,
                                            .domain = "player",
                                            .locationServices = std::make_shared<host::FixedPosition>(
                                                platform::Coordinate{.latitude = 12.345678, .longitude = 98.765432}),
                                            .geocoder = std::make_shared<AnsweringGeocoder>()}));
    host_ = std::make_unique<host::Host>(container);
    for (const auto& row : kPackageTextReads) {
      host_->session().set(*packageTextNamed(row.name), "SECRET-" + std::string(row.name));
    }
    host_->counters().recordUse();
    host_->tracker().addEvent("MARK-NETWORK", "click");
    host_->tracker().addEvent("MARK-NETWORK", "view");
    host::writeCachedList(host::CachedList::video, Value::list({"SECRET-RECORD"}));
  }

 private:
  std::unique_ptr<host::Host> host_;
};

void callEveryOperation(const fs::path& folder) {
  using U = TavloUtility;
  const std::string url = "http://localhost:1/SECRET-URL";
  U::setAppIdToUserDefault("SECRET-APPLICATION");
  U::setOptionalIdToUserDefault("SECRET-OPTIONAL");
  U::setSecurityKeyToUserDefault("SECRET-KEY");
  EXPECT_EQ(U::getAppIdFromUserDefault(), "SECRET-APPLICATION");
  EXPECT_EQ(U::getOptionalIdFromUserDefault(), "SECRET-OPTIONAL");
  EXPECT_EQ(U::getSecurityKeyTFromUserDefault(), "SECRET-KEY");
  U::fetchCurrentLocation();
  U::fetchCurrentLocation();
  EXPECT_THAT(U::getAdditionalRequestingString(), HasSubstr("&lat=12.345678&long=98.765432&"));
  EXPECT_THAT(U::getInAppNotificationAdditionalRequest(), HasSubstr("app_id=SECRET-APPLICATION&"));
  EXPECT_THAT(U::getUserInfoRequestString(), HasSubstr("&ru=1&"));
  EXPECT_EQ(U::trackerNetworkSessionData().ifMap()->size(), 35U);
  EXPECT_TRUE(U::getDocumentDirectoryPath("list.txt"));
  EXPECT_EQ(U::getCacheVideoDataPath(url), std::nullopt);
  EXPECT_EQ(U::getCacheVideoPathOfSavedInDB("x.mp4"), std::nullopt);
  EXPECT_EQ(U::sortCacahedVideoDates(U::getCachedVideoList(true)), Value::list({"SECRET-RECORD"}));
  EXPECT_EQ(U::getCacheBannerImagePath(url), std::nullopt);
  EXPECT_FALSE(U::deleteCachedVideo((folder / "SECRET-FILE").string()));
  U::clearCache();
  EXPECT_EQ(U::frameworkBundle(), nullptr);
  EXPECT_EQ(U::getVolumeImage(), nullptr);
  EXPECT_EQ(U::getMuteImage(), nullptr);
  U::getExportTavloSDKLog(nullptr);
  EXPECT_FALSE(U::quillmixInstalledOnThisDevice());
  EXPECT_EQ(U::md5(Value::list({"SECRET-KEY"})), std::nullopt);
  EXPECT_EQ(U::getFileExtensionFromUrl(url), "");

  const auto awaited = std::make_shared<AwaitedLogger>();
  Logger::install(awaited);
  U::cachedBannerImage(url);
  EXPECT_THAT(awaited->takeAfter(1), ElementsAre("getAndSaveBannerImage(): Passed data is empty"));
}

// The whole console, so that a line more is noticed as well as a mark.
TEST_F(Secrecy, TheConsoleTellsNothingButTheContractsLines) {
  const CapturedConsole console(folder_ / "console");
  const MarkedHost host(container_);

  callEveryOperation(folder_.path());
  test::writeFile(container_ / "Library/Preferences/player.plist", "SECRET-KEY in a damaged file");
  EXPECT_EQ(TavloUtility::getSecurityKeyTFromUserDefault(), std::nullopt);

  const std::string box = container_.string();
  EXPECT_EQ(console.text(),
            "location authorization: 3\n"
            "reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
            "placemarks=MARK-STREET, MARK-COUNTRY\n"
            "Current Location\n"
            "placemark.ISOcountryCode =(null)\n"
            "placemark.country =MARK-COUNTRY\n"
            "placemark.postalCode =(null)\n"
            "placemark.administrativeArea =(null)\n"
            "placemark.locality =(null)\n"
            "placemark.subLocality =(null)\n"
            "placemark.subThoroughfare =MARK-STREET\n"
            "location authorization: 3\n"
            "reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
            "Geocode failed with error: no such place\n"
            "MARK-NETWORK  click  1\n"
            "MARK-NETWORK  view  1\n"
            "Documents Directory: file://" +
                box + "/Documents/\n" +  //
                "TavloUtility: the settings file " + box +
                "/Library/Preferences/player.plist is damaged (no property list: it does not begin with \"bplist\"); "
                "it counts as empty, and the next write keeps it as " +
                box + "/Library/Preferences/player.plist.damaged\n");
}

// What the log is told lies in a file that other apps may be handed.
TEST_F(Secrecy, TheLogTellsNoIdentifierPositionOrText) {
  const CapturedConsole console(folder_ / "console");
  const MarkedHost host(container_);

  callEveryOperation(folder_.path());

  const std::string log = test::readFile(container_ / "Documents/TavloCache/TavloLogFile.txt");
  EXPECT_THAT(log, HasSubstr("Log file is created\n"));
  for (const char* const mark : {"SECRET", "MARK", "12.345678", "98.765432"}) EXPECT_THAT(log, Not(HasSubstr(mark)));
}

}  // namespace
}  // namespace tavlo
