#include "host/Host.h"

#include <system_error>
#include <utility>

#include "host/ExceptionReporter.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;

// A folder that cannot be made shows when the database in it cannot be opened.
void makePrivateFolder(const fs::path& folder) {
  std::error_code ignored;
  if (folder.empty() || fs::exists(folder, ignored)) return;
  makePrivateFolder(folder.parent_path());
  if (fs::create_directory(folder, ignored)) fs::permissions(folder, fs::perms::owner_all, ignored);
}

}  // namespace

Host::Host(const fs::path& container, const Clock& clock, DatabaseOptions options) {
  const auto database = std::make_shared<Database>(databaseFile(container), options);
  counters_ = std::make_shared<UniqueUserCounters>(database, clock);
  tracker_ = std::make_shared<TrackerDatabase>(database);

  Logger::install(std::make_shared<LogFileWriter>(container / "Documents", clock));
  TavloException::install(std::make_shared<ExceptionReporter>());
  TavloPackage::install(session_);
  TavloUniqueUserHandler::install(counters_);
  DataBaseHandler::install(tracker_);
}

fs::path Host::databaseFile(const fs::path& container) {
  const fs::path folder = container / "Library";
  makePrivateFolder(folder);
  return folder / "tracker.sqlite";
}

}  // namespace tavlo::host
