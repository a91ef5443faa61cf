// Platform: everything that the component needs of the world outside, one interface a service.
//
// Absent   a service that a platform does not override answers "not available": settings hold nothing and
//          fail to synchronize, console messages and background tasks are dropped, files are missing and cannot
//          be made, no URL has data, location services are off and geocoders answer with an error, there are
//          no bundles, no images and no other apps. The same holds for every service while no platform is
//          installed and none is linked.
// Threads  any thread, any time. install() takes effect for the next call of current(); a caller that holds
//          the old platform keeps it alive.
#pragma once

#include <memory>

#include "platform/Application.h"
#include "platform/BackgroundQueue.h"
#include "platform/Bundle.h"
#include "platform/Console.h"
#include "platform/FileManager.h"
#include "platform/Geocoder.h"
#include "platform/Image.h"
#include "platform/Location.h"
#include "platform/UrlData.h"
#include "platform/UserDefaults.h"

namespace tavlo::platform {

class Platform {
 public:
  Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
  virtual ~Platform() = default;

  [[nodiscard]] virtual UserDefaults& standardUserDefaults();
  [[nodiscard]] virtual Console& console();
  [[nodiscard]] virtual FileManager& fileManager();
  [[nodiscard]] virtual BackgroundQueue& backgroundQueue();
  [[nodiscard]] virtual UrlData& urlData();
  [[nodiscard]] virtual LocationServices& locationServices();
  [[nodiscard]] virtual Bundles& bundles();
  [[nodiscard]] virtual Images& images();
  [[nodiscard]] virtual Application& sharedApplication();

  // A geocoder for one request or many. Never nullptr.
  [[nodiscard]] virtual std::shared_ptr<Geocoder> makeGeocoder();
};

// Puts a platform in place for the whole process; nullptr takes it out again, so that the next current()
// makes the default one anew.
void install(std::shared_ptr<Platform> platform);

// The platform in place. With none installed, the linked platform library's factory makes the default on
// first use; with none linked, every service is "not available". Never nullptr.
[[nodiscard]] std::shared_ptr<Platform> current();

// How a platform library makes its default. It sets this when it is linked; nullptr means none is.
using Factory = std::shared_ptr<Platform> (*)();
void setDefaultFactory(Factory factory);

}  // namespace tavlo::platform
