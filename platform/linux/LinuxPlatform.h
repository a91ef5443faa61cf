// The Linux platform: the services of platform/Platform.h over files in the app's container.
//
//   tavlo::platform::install(tavlo::linux_platform::make({.domain = "org.example.player"}));
//
// A program that links the library and installs nothing has make({}) by itself, on first use.
//
// Values   see Options. Nothing is read or made on disk before the first service that needs it is used.
//          The background queue is a WorkerQueue.h, URL data is a LinuxUrlData.h, bundles are a LinuxBundles.h and
//          images a PngImages.h, other apps a DesktopApplication.h.
// Absent   when there is no place for a container (no container given, no XDG_DATA_HOME, no HOME, no entry
//          in the password database) settings hold nothing and fail to synchronize, and there are no files, nor
//          resources unless their folder is given.
// Threads  make() and every service: any thread, any time. After fork() in a program of several threads the
//          child must not use them before exec(). The end of the platform, and that of the process, drops
//          background tasks that have not begun, ends downloads at once and waits for the workers.
// Throws   std::invalid_argument from make(), with a message that names the option, when the domain or the
//          container of the options is no usable name (Container.h), a limit is outside its range, the desktop id or
//          the maintainer is no text, the geocoding URL is none, or the folder of resources or the file of certificate
//          authorities is no path. make({}) throws nothing but std::bad_alloc.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/Platform.h"
#include "platform/linux/DesktopLocation.h"
#include "platform/linux/DownloadLimits.h"
#include "platform/linux/LinuxGeocoder.h"
#include "platform/linux/MenuOutcome.h"

namespace tavlo::linux_platform {

struct Options {
  std::optional<std::filesystem::path> container{};  // absent: a folder of the domain's name, see Container.h
  std::string domain{};                              // empty: the name of the executable
  std::optional<std::filesystem::path> resources{};  // what holds the app's bundles; absent: CONTAINER/Resources
  bool quietConsole = false;                         // drops console lines instead of writing them to stderr
  DownloadLimits downloads{};
  std::optional<std::filesystem::path> certificateAuthorities{};   // a PEM file to trust in place of the system's
  LocationOptions location{};                                      // of the desktop's position service
  std::shared_ptr<platform::LocationServices> locationServices{};  // in place of the desktop's
  GeocodingOptions geocoding{};                                    // of the platform's own geocoder
  std::shared_ptr<platform::Geocoder> geocoder{};                  // in place of the platform's own
  MenuHandler onOpenInMenu{};                                      // gets what becomes of open-in menus
};

[[nodiscard]] std::shared_ptr<platform::Platform> make(const Options& options = {});

}  // namespace tavlo::linux_platform
