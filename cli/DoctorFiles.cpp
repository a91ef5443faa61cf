// What lies in the container, and whether more can be put there.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "cli/CacheEntries.h"
#include "cli/CacheSession.h"
#include "cli/Doctor.h"
#include "cli/Errors.h"
#include "cli/LogFile.h"
#include "common/Path.h"
#include "platform/linux/SettingsFile.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;
using linux_platform::SettingsFile;

constexpr bool kHasImages = TAVLO_LINUX_IMAGES;

// Of a message that ends with what to do.
Finding brokenAsTold(const std::string& message, std::string_view separator) {
  const auto advice = message.rfind(separator);
  if (advice == std::string::npos) return broken(message, "check what lies there");
  return broken(message.substr(0, advice), message.substr(advice + separator.size()));
}

std::string reason() { return std::generic_category().message(errno); }

// A file of its own is made, written and removed: no other look tells of a full disk.
Finding tryWriting(const fs::path& folder) {
  std::string name = (folder / "tavlo-doctor-XXXXXX").string();
  const int fd = ::mkstemp(name.data());
  bool written = fd >= 0 && ::write(fd, "x", 1) == 1;
  const std::string why = written ? "" : reason();
  if (fd >= 0) {
    ::close(fd);
    ::unlink(name.c_str());
  }
  if (written) return ok(folder.string() + " can be written");
  return broken(folder.string() + " cannot be written: " + why, "check the rights to it and the room on its disk");
}

Finding imageOf(const Patient& patient, const char* name) {
  const std::string bundlePath = (patient.place.resources() / kResourceBundleName).string();
  if (!kHasImages) return note("this program was built without libpng", "build it with libpng");
  const auto bundle = patient.platform->bundles().bundleWithPath(bundlePath);
  const Text path = bundle ? bundle->pathForResourceOfType(name, "png") : std::nullopt;
  if (!path) return note("there is no " + std::string(name) + ".png in " + bundlePath, "put it there");
  const auto image = patient.platform->images().imageWithContentsOfFile(path);
  if (!image) return broken(*path + " cannot be read as an image", "put a PNG file there");
  return ok(*path + " has " + std::to_string(image->width()) + " x " + std::to_string(image->height()) + " pixels");
}

}  // namespace

Finding examineContainer(const Patient& patient) {
  const fs::path folder = patient.place.folder();
  std::error_code error;
  if (fs::is_directory(folder, error)) return tryWriting(folder);
  if (fs::exists(fs::symlink_status(folder, error))) {
    return broken(folder.string() + " is no folder", "move it away, or give another one with --container");
  }
  fs::path above = folder.parent_path();
  while (above.has_relative_path() && !fs::exists(fs::symlink_status(above, error))) above = above.parent_path();
  if (::access(above.c_str(), W_OK | X_OK) == 0 && fs::is_directory(above, error)) {
    return ok(folder.string() + " is not there yet, and can be made");
  }
  return broken(folder.string() + " cannot be made: " + above.string() + " is no folder that can be written",
                "check the rights to it, or give another container with --container");
}

Finding examineSettings(const Patient& patient) {
  const std::string path = patient.place.settingsFile().string();
  const auto contents = SettingsFile(linux_platform::Syscalls::real(), path).read();
  switch (contents.state) {
    case SettingsFile::State::whole:
      return ok(path + " has " + std::to_string(contents.entries.size()) +
                (contents.entries.size() == 1 ? " entry" : " entries"));
    case SettingsFile::State::missing: return ok(path + " is not there yet: there are no identifiers");
    case SettingsFile::State::damaged:
      return broken(path + " is damaged: " + contents.error,
                    "put a copy back, or set the identifiers anew; the damaged file is kept beside then");
    case SettingsFile::State::unreadable: break;
  }
  return broken(path + " cannot be read",
                "check that it is a regular file of at most 64 MiB, in folders, and the rights to it");
}

Finding examineDatabase(const Patient& patient) {
  try {
    const auto database = patient.place.openExistingDatabase();
    if (!database) return ok("there is none yet: no tracker records, no counters");
    const auto rows = database->run("PRAGMA integrity_check(1)");
    const auto answer = rows.empty() || rows.front().empty() ? std::nullopt : rows.front().front().ifText();
    if (answer && *answer == "ok") return ok("the tracker records and counters are sound");
    return broken(std::string("the database is damaged: ").append(answer.value_or("it gives no answer")),
                  "move it away, and a new one is made");
  } catch (const host::DatabaseError& error) {
    return brokenAsTold(error.what(), ": ");
  } catch (const Failure& failure) {
    return brokenAsTold(failure.what(), "; ");
  }
}

Finding examineCache(const Patient& patient) {
  const fs::path folder = cacheFolder(patient.place);
  try {
    const auto entries = cacheEntries(folder);
    if (!entries) return ok(folder.string() + " is not there yet");
    return ok(folder.string() + " has " + std::to_string(entries->size()) +
              (entries->size() == 1 ? " entry" : " entries"));
  } catch (const Failure& failure) {
    return brokenAsTold(failure.what(), "; ");
  }
}

Finding examineLog(const Patient& patient) {
  const fs::path path = cacheFolder(patient.place) / kLogFileName;
  try {
    if (!LogFile::open(path)) return ok(path.string() + " is not there yet");
    return ok(path.string() + " can be read");
  } catch (const Failure& failure) {
    return brokenAsTold(failure.what(), "; ");
  }
}

Finding examineBundle(const Patient& patient) {
  const std::string path = (patient.place.resources() / kResourceBundleName).string();
  if (patient.platform->bundles().bundleWithPath(path)) return ok(path + " is there");
  return note("there is no " + path, "put the bundle there");
}

Finding examineVolumeImage(const Patient& patient) { return imageOf(patient, "volume"); }
Finding examineMuteImage(const Patient& patient) { return imageOf(patient, "mute"); }

}  // namespace tavlo::cli
