#include "cli/Place.h"

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "cli/Errors.h"
#include "host/Host.h"
#include "platform/linux/SettingsFile.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

std::optional<fs::path> givenFolder(const Globals& globals) {
  if (globals.container) return *globals.container;
  const char* const variable = std::getenv("TAVLO_CONTAINER");
  if (variable && *variable != '\0') return variable;
  return std::nullopt;
}

linux_platform::Container locate(const Globals& globals) {
  if (globals.domain.empty()) throw UsageError("--domain takes a name, and \"\" is none");
  try {
    const auto container = linux_platform::Container::locate(givenFolder(globals), globals.domain);
    if (container) return *container;
  } catch (const std::invalid_argument& error) {
    throw UsageError(error.what());
  }
  throw Failure("there is no folder for the container: neither XDG_DATA_HOME nor a home is known; give --container");
}

}  // namespace

Place::Place(const Globals& globals) : quiet_(globals.quiet), container_(locate(globals)) {}

fs::path Place::resources() const {
  std::error_code ignored;
  fs::path own = container_.folder() / "Resources";
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  for (const fs::path& folder : {own, program / "Resources", program.parent_path() / "share/tavlo/Resources"}) {
    if (fs::is_directory(folder / kResourceBundleName, ignored)) return folder;
  }
  return own;
}

std::shared_ptr<platform::Platform> Place::makePlatform(linux_platform::Options outside) const {
  outside.container = container_.folder();
  outside.domain = container_.domain();
  outside.quietConsole = quiet_;
  return linux_platform::make(outside);
}

void Place::requireReadableSettings() const {
  using linux_platform::SettingsFile;
  const SettingsFile file(linux_platform::Syscalls::real(), settingsFile());
  if (file.read().state == SettingsFile::State::unreadable) {
    throw Failure("cannot read " + settingsFile().string() +
                  "; check that it is a regular file of at most 64 MiB, in folders, and the rights to it");
  }
}

std::shared_ptr<host::Database> Place::openDatabase() const {
  return std::make_shared<host::Database>(host::Host::databaseFile(container_.folder()));
}

std::shared_ptr<host::Database> Place::openExistingDatabase() const {
  std::error_code error;
  const fs::file_status folder = fs::status(container_.folder(), error);
  if (fs::exists(folder) && !fs::is_directory(folder)) {
    throw Failure("the container " + container_.folder().string() + " is no folder; give another one");
  }
  // Naming the database makes its folder, so that has to be there first.
  if (!fs::exists(container_.library(), error)) {
    if (error) throw Failure("cannot look into " + container_.folder().string() + ": " + error.message());
    return nullptr;
  }
  const fs::path file = host::Host::databaseFile(container_.folder());
  if (!fs::exists(file, error)) {
    if (error) throw Failure("cannot look into " + container_.library().string() + ": " + error.message());
    return nullptr;
  }
  return std::make_shared<host::Database>(file);
}

}  // namespace tavlo::cli
