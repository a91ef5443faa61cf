// Place: the container that a run of the program works in, and what is stored there.
//
// Throws   UsageError for a container or a domain that is no usable name, Failure when nothing names a folder.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "cli/CommandLine.h"
#include "host/Database.h"
#include "platform/Platform.h"
#include "platform/linux/Container.h"
#include "platform/linux/LinuxPlatform.h"

namespace tavlo::cli {

inline constexpr const char* kResourceBundleName = "TavloSDKResource.bundle";

class Place {
 public:
  // --container, else $TAVLO_CONTAINER, else the domain's folder among the user's data.
  explicit Place(const Globals& globals);

  [[nodiscard]] std::filesystem::path folder() const { return container_.folder(); }
  [[nodiscard]] std::filesystem::path settingsFile() const { return container_.settingsFile(); }

  // What holds the resource bundle: the container's Resources, or, when that has none, those beside the
  // program, or those that are installed with it.
  [[nodiscard]] std::filesystem::path resources() const;

  // A platform of the container, as a program that starts anew has it. Of `outside` counts what is no part of a place:
  // the services.
  [[nodiscard]] std::shared_ptr<platform::Platform> makePlatform(linux_platform::Options outside = {}) const;

  // Settings that are missing are empty, damaged ones too; those that cannot be read at all must not pass for
  // either. Throws Failure.
  void requireReadableSettings() const;

  // The host's database, made when it is missing. Throws host::DatabaseError.
  [[nodiscard]] std::shared_ptr<host::Database> openDatabase() const;

  // The same, but nullptr instead of making anything.
  [[nodiscard]] std::shared_ptr<host::Database> openExistingDatabase() const;

 private:
  bool quiet_;
  linux_platform::Container container_;
};

}  // namespace tavlo::cli
