// LinuxBundles: directories of resource files.
//
// Values   the main bundle's resource path is the directory given, whether it is there or not. A bundle keeps the
//          path that it was opened with; a resource's path is that path, "/", its name, "." and its type. Nothing
//          is cached: each call looks at the disk.
// Absent   no bundle: the path is absent, empty, holds a NUL, or leads to no directory. No resource: its name or
//          its type is empty or holds a "/" or a NUL, so that none leads out of the bundle, or what has that name
//          is no regular file. Symbolic links are followed.
// Threads  any thread, any time.
#pragma once

#include <memory>
#include <string_view>

#include "platform/Bundle.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class LinuxBundles final : public platform::Bundles {
 public:
  // The seam must outlive the bundles that are opened.
  explicit LinuxBundles(Text mainResources, Syscalls& syscalls = Syscalls::real());

  [[nodiscard]] Text mainBundleResourcePath() override { return mainResources_; }
  [[nodiscard]] std::shared_ptr<platform::Bundle> bundleWithPath(const Text& path) override;

 private:
  const Text mainResources_;
  Syscalls& syscalls_;
};

}  // namespace tavlo::linux_platform
