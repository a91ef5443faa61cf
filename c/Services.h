// Services of the platform over a host's tables.
//
// Threads  as platform/Platform.h says of each.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "c/Callbacks.h"
#include "c/tavlo_platform.h"
#include "platform/Platform.h"

namespace tavlo::c {

class HostConsole final : public platform::Console {
 public:
  explicit HostConsole(const tavlo_console& table) : callbacks(table, "tavlo_console") {}
  void log(std::string_view message) override { callbacks.call(&tavlo_console::log, borrowed(message)); }

  Callbacks<tavlo_console> callbacks;
};

class HostUrlData final : public platform::UrlData {
 public:
  explicit HostUrlData(const tavlo_url_data& table) : callbacks(table, "tavlo_url_data") {}
  std::optional<std::string> dataWithContentsOfUrl(std::string_view url) override {
    return answerOf(callbacks, &tavlo_url_data::dataWithContentsOfURL, borrowed(url));
  }

  Callbacks<tavlo_url_data> callbacks;
};

class HostFiles final : public platform::FileManager {
 public:
  explicit HostFiles(const tavlo_file_manager& table) : callbacks(table, "tavlo_file_manager") {}
  Text documentDirectory() override;
  platform::Existence fileExistsAtPathIsDirectory(const Text& path) override;
  platform::FileResult removeItemAtPath(const Text& path, platform::Removal removal) override;
  platform::FileResult createDirectoryAtPath(const Text& path) override;
  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override;
  std::optional<std::string> dataWithContentsOfFile(const Text& path) override;
  platform::FileResult writeToFileAtomically(std::string_view bytes, const Text& path,
                                             platform::Durable durable) override;

  Callbacks<tavlo_file_manager> callbacks;
};

class HostDefaults final : public platform::UserDefaults {
 public:
  explicit HostDefaults(const tavlo_user_defaults& table) : callbacks(table, "tavlo_user_defaults") {}
  std::optional<Value> objectForKey(std::string_view key) override;
  void setObjectForKey(const Value& value, std::string_view key) override {
    callbacks.call(&tavlo_user_defaults::setObjectForKey, handleOf(&value), borrowed(key));
  }
  bool synchronize() override { return callbacks.call(&tavlo_user_defaults::synchronize); }

  Callbacks<tavlo_user_defaults> callbacks;
};

class HostQueue final : public platform::BackgroundQueue {
 public:
  explicit HostQueue(const tavlo_background_queue& table) : callbacks(table, "tavlo_background_queue") {}
  void dispatchAsync(std::function<void()> task) override;

  Callbacks<tavlo_background_queue> callbacks;
};

class HostLocation final : public platform::LocationServices, public std::enable_shared_from_this<HostLocation> {
 public:
  explicit HostLocation(const tavlo_location_services& table) : callbacks(table, "tavlo_location_services") {}
  bool locationServicesEnabled() override { return callbacks.call(&tavlo_location_services::locationServicesEnabled); }
  std::int32_t authorizationStatus() override { return callbacks.call(&tavlo_location_services::authorizationStatus); }
  std::shared_ptr<platform::LocationManager> makeLocationManager() override;
  void requestAuthorization(StatusHandler answered) override { answered(authorizationStatus()); }
  void requestLocation(LocationHandler answered) override { answered(location()); }
  [[nodiscard]] std::optional<platform::Location> location() const;

  Callbacks<tavlo_location_services> callbacks;
};

class HostGeocoder final : public platform::Geocoder {
 public:
  explicit HostGeocoder(const tavlo_geocoder& table) : callbacks(table, "tavlo_geocoder") {}
  void reverseGeocodeLocation(const std::optional<platform::Location>& location,
                              platform::GeocodeCompletionHandler completionHandler) override;

  Callbacks<tavlo_geocoder> callbacks;
};

class HostApplication final : public platform::Application, public std::enable_shared_from_this<HostApplication> {
 public:
  explicit HostApplication(const tavlo_application& table) : callbacks(table, "tavlo_application") {}
  bool canOpenURL(std::string_view url) override {
    return callbacks.call(&tavlo_application::canOpenURL, borrowed(url));
  }
  std::shared_ptr<platform::DocumentInteractionController> interactionControllerWithURL(std::string_view url) override;

  Callbacks<tavlo_application> callbacks;
};

}  // namespace tavlo::c
