// The platform's bundles: directories of resource files.
//
// Values   paths are the platform's own; a resource is the file "name.type" directly in its bundle.
// Absent   no such directory, no such file.
// Threads  any thread, any time.
#pragma once

#include <memory>
#include <string_view>

#include "common/Text.h"

namespace tavlo::platform {

// May outlive the platform that opened it.
class Bundle {
 public:
  Bundle() = default;
  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;
  virtual ~Bundle() = default;

  [[nodiscard]] virtual Text pathForResourceOfType(std::string_view name, std::string_view type) = 0;
};

class Bundles {
 public:
  Bundles() = default;
  Bundles(const Bundles&) = delete;
  Bundles& operator=(const Bundles&) = delete;
  virtual ~Bundles() = default;

  // The directory that holds the host app's resources, whether it is there or not.
  [[nodiscard]] virtual Text mainBundleResourcePath() = 0;

  // Opens a directory as a bundle. nullptr when there is none, or the path is absent.
  [[nodiscard]] virtual std::shared_ptr<Bundle> bundleWithPath(const Text& path) = 0;
};

}  // namespace tavlo::platform
