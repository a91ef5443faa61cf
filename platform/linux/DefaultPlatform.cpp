// Makes this library's platform the default of every program that links it. Nothing refers to this file but
// the linker option that comes with the library's target, which keeps a static link from leaving it out.
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"

extern "C" bool tavloLinuxPlatformIsDefault;

bool tavloLinuxPlatformIsDefault = [] {
  tavlo::platform::setDefaultFactory([] { return tavlo::linux_platform::make(); });
  return true;
}();
