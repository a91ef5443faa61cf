// The real platform and a real host over one container, with a position that is known and a geocoder that answers when
// it is told to; and what lies in that container, in one line each.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "TavloUtility.h"
#include "common/PropertyList.h"
#include "common/Slot.h"
#include "host/FixedPosition.h"
#include "host/Host.h"
#include "location/LocationSlots.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/RealContainer.h"
#include "tests/support/CacheWorlds.h"
#include "tests/support/Scale.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

class HandGeocoder final : public platform::Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<platform::Location>&,
                              platform::GeocodeCompletionHandler handler) override {
    answer = std::move(handler);
  }

  platform::GeocodeCompletionHandler answer;
};

class OutOfMemoryWorld {
 public:
  OutOfMemoryWorld() {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);  // no desktop of the machine has a say
    host_.session().set(PackageText::device_model, "a phone & more of its name than a short text holds");
    for (const char* const event : {"impression", "click"}) host_.tracker().addEvent("network-7", event);
    std::filesystem::create_directories(documents());
    restart();
  }
  OutOfMemoryWorld(const OutOfMemoryWorld&) = delete;
  OutOfMemoryWorld& operator=(const OutOfMemoryWorld&) = delete;
  ~OutOfMemoryWorld() {
    emptySlots();
    locationManager().store(nullptr);
    processSlot<platform::Bundle>().store(nullptr);
    processSlot<const platform::Image>().store(nullptr);
    processSlot<platform::DocumentInteractionController>().store(nullptr);
  }

  // A platform that has done nothing yet. Under ThreadSanitizer it has: that takes a std::call_once() whose function
  // has thrown for one that is never done.
  void restart() {
    platform_ = linux_platform::make({.container = folder_.path(),
                                      .domain = "player",
                                      .resources = std::filesystem::path(TAVLO_SOURCE_DIR) / "resources",
                                      .quietConsole = true,
                                      .downloads = {.workers = 1},
                                      .locationServices = position_,
                                      .geocoder = geocoder_});
    platform::install(platform_);
    if (!kUnderThreadSanitizer) return;
    static_cast<void>(platform_->fileManager());
    static_cast<void>(platform_->standardUserDefaults());
    platform_->backgroundQueue().dispatchAsync([] {});
  }

  [[nodiscard]] host::Host& host() { return host_; }
  [[nodiscard]] HandGeocoder& geocoder() { return *geocoder_; }
  [[nodiscard]] platform::Platform& platform() { return *platform_; }

  [[nodiscard]] std::string documents() const { return (folder_ / "Documents").string(); }
  [[nodiscard]] std::string cache(const std::string& name = "") const { return documents() + "/TavloCache" + name; }
  [[nodiscard]] std::filesystem::path settings() const { return folder_ / "Library/Preferences/player.plist"; }
  [[nodiscard]] std::string shown(const std::string& text) const { return withoutPlace(text, documents()); }

  // An empty cache directory, but for these files.
  void fillCache(const std::vector<std::string>& names) const {
    std::filesystem::remove_all(cache());
    std::filesystem::create_directories(cache());
    for (const std::string& name : names) writeFile(cache("/" + name), "older");
  }
  // Below the folder, all levels, in one line.
  [[nodiscard]] std::string namesBelow(const std::string& folder) const {
    if (!std::filesystem::exists(folder)) return "no folder";
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      const std::string name = entry.path().lexically_relative(folder).string();
      if (name != "TavloLogFile.txt") names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    std::string line;
    for (const std::string& name : names) line += name + ' ';
    return line;
  }

  void putSettings(const std::string& value) const {
    std::filesystem::create_directories(settings().parent_path());
    const Value entries = Value::map({{"ApplicationId", value}, {"OptionalId", value}, {"SecurityKey", value}});
    writeFile(settings(), *property_list::encode(entries));
  }
  // What the file has for the three identifiers; and how many temporaries lie about.
  [[nodiscard]] std::string identifiers() const {
    const auto root = property_list::decode(readFile(settings())).value;
    std::string line;
    for (const char* const key : {"ApplicationId", "OptionalId", "SecurityKey"}) {
      const Value* const value = root && root->ifMap() ? root->ifMap()->find(key) : nullptr;
      line.append(value ? value->ifText().value_or("?") : "?").append(" ");
    }
    return line + temporaries();
  }
  [[nodiscard]] std::string temporaries() const {
    const std::string names = std::filesystem::exists(folder_ / "tmp") ? namesBelow((folder_ / "tmp").string()) : "";
    return names.empty() ? "clean" : "temporaries";
  }
  [[nodiscard]] std::string position() {
    const auto text = [&](PackageText which) { return host_.session().get(which).value_or("-"); };
    return text(PackageText::getLatitude) + " " + text(PackageText::getLongitude) + " '" +
           text(PackageText::getUserAddress) + "'";
  }

  // Until the one worker has done what it was given before.
  void waitForWorker() {
    std::promise<void> done;
    platform_->backgroundQueue().dispatchAsync([&] { done.set_value(); });
    done.get_future().wait();
  }

 private:
  TemporaryFolder folder_{TemporaryFolder::inMemory()};
  host::Host host_{folder_.path()};
  std::shared_ptr<host::FixedPosition> position_ =
      std::make_shared<host::FixedPosition>(platform::Coordinate{.latitude = 52.52, .longitude = 13.405});
  std::shared_ptr<HandGeocoder> geocoder_ = std::make_shared<HandGeocoder>();
  std::shared_ptr<platform::Platform> platform_;
};

}  // namespace tavlo::test
