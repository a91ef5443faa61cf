#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/BenchHost.h"
#include "bench/Outline.h"
#include "bench/peers/LibPlist.h"
#include "bench/peers/Peers.h"
#include "bench/peers/Sqlite.h"
#include "common/PropertyList.h"

namespace tavlo::bench {
namespace {

// What a host app keeps beside the identifiers: of each six settings two texts, an integer, a flag, a date, a list.
Value setting(std::size_t number) {
  switch (number % 6) {
    case 0: return "value " + std::to_string(number) + " of M\xC3\xBCller & co";
    case 1: return static_cast<std::uint32_t>(number) * 1000;
    case 2: return number % 4 == 0;
    case 3: return Date{7200.5 + static_cast<double>(number)};
    case 4: return Value::list({"clip one", "clip two", static_cast<std::uint32_t>(number)});
    default: return "7D4E0F2A-93B1-4C58-A6D2-" + std::to_string(100000000000 + number);
  }
}

std::string settingsFile(std::size_t keys) {
  ValueMap entries;
  for (std::size_t i = 0; i < keys; ++i) {
    entries.append("com.example.player.setting-" + std::to_string(i), setting(i));
  }
  return property_list::encode(Value::map(entries)).value();
}

// Both trees are made and destroyed in the time that is taken; only the check writes them out.
struct OurTree {
  property_list::Decoded list;
};
std::string answerOf(const OurTree& tree) { return tree.list.value ? outlineOf(*tree.list.value) : tree.list.error; }

void addSettingsParse(Races& races, std::size_t keys) {
  const auto file = std::make_shared<std::string>();
  Race& race = races.add("settings parse", std::to_string(keys) + " keys");
  race.size(keys).setUp([=, count = races.sized(keys)] { *file = settingsFile(count); }).ours([=] {
    return OurTree{property_list::decode(*file)};
  });
  if constexpr (peers::kLibPlist) {
    race.peer("libplist", [=] { return peers::plistFromBinary(*file); }).atMost(1.1, "libplist");
  }
}

// The settings file, and what writes as much beside it by bare calls and through a database.
struct Store {
  std::filesystem::path folder;
  std::string settingsFile;
  std::string bytes;  // as many as the settings file has
  std::unique_ptr<peers::SqliteSettings> database;
  std::uint64_t number = 0;

  // Each value differs from the one before: a database need not write what it has.
  std::string nextValue() { return "app id " + std::to_string(1'000'000'000 + ++number); }
};

const std::filesystem::path kBareTarget = "bare.plist";
const std::filesystem::path kBareTemporary = "bare.tmp";

void expect(bool succeeded, const char* call) {
  if (!succeeded) throw std::system_error(errno, std::generic_category(), call);
}

void syncAndClose(int file) {
  expect(::fsync(file) == 0, "fsync");
  expect(::close(file) == 0, "close");
}

void writeBare(const Store& store) {
  const std::filesystem::path temporary = store.folder / kBareTemporary;
  const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  expect(file >= 0, "open");
  expect(::write(file, store.bytes.data(), store.bytes.size()) == static_cast<ssize_t>(store.bytes.size()), "write");
  syncAndClose(file);
  expect(::rename(temporary.c_str(), (store.folder / kBareTarget).c_str()) == 0, "rename");
  const int folder = ::open(store.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  expect(folder >= 0, "open");
  syncAndClose(folder);
}

std::string fileSystemOf(const std::filesystem::path& folder) {
  struct statfs status {};
  expect(::statfs(folder.c_str(), &status) == 0, "statfs");
  switch (status.f_type) {
    case EXT4_SUPER_MAGIC: return "ext4";
    case TMPFS_MAGIC: return "tmpfs";
    case OVERLAYFS_SUPER_MAGIC: return "overlayfs";
    case BTRFS_SUPER_MAGIC: return "btrfs";
    case XFS_SUPER_MAGIC: return "xfs";
    default: return "an unnamed file system";
  }
}

std::string whole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The Documents folder of the container lies beside all that a setter writes to.
void prepare(Store& store) {
  installHost();
  store.folder = std::filesystem::path(TavloUtility::getDocumentDirectoryPath("").value()).parent_path();
  store.settingsFile = store.folder.parent_path() / "Library/Preferences/tavlo-bench.plist";
  store.bytes = whole(store.settingsFile);
  if (store.bytes.empty()) throw std::runtime_error("no settings in " + store.settingsFile);
}

void addSet(Races& races, const std::string& where) {
  const auto store = std::make_shared<Store>();
  Race& race = races.add("identifier set", where).wallClock();
  race.setUp([=] {
    prepare(*store);
    if constexpr (peers::kSqlite) {
      store->database = std::make_unique<peers::SqliteSettings>(store->folder / "settings.db");
    }
  });
  race.ours([=] { TavloUtility::setAppIdToUserDefault(store->nextValue()); });
  race.limit("bare", [=] { writeBare(*store); }).atMost(1.15, "bare");
  if constexpr (peers::kSqlite) {
    race.peer("SQLite", [=] { store->database->put("ApplicationId", store->nextValue()); }).atMost(1.0, "SQLite");
  }
}

void addGet(Races& races, const std::string& where) {
  constexpr auto kUntilItIsKept = std::chrono::milliseconds(200);  // what changed just now is read each time
  const auto store = std::make_shared<Store>();
  Race& race = races.add("identifier get", where);
  race.setUp([=] {
    prepare(*store);
    std::this_thread::sleep_for(kUntilItIsKept);
  });
  race.ours([=] { return TavloUtility::getAppIdFromUserDefault(); });
  race.limit("one stat call",
             [=] {
               struct stat status {};
               return ::stat(store->settingsFile.c_str(), &status);
             })
      .atMost(1.5, "one stat call");
}

}  // namespace

void addIdentifiers(Races& races) {
  const std::string where = "on " + fileSystemOf(std::filesystem::temp_directory_path());
  addSet(races, where);
  addGet(races, where);
  for (const std::size_t keys : {10U, 100U, 1000U}) addSettingsParse(races, keys);
}

}  // namespace tavlo::bench
