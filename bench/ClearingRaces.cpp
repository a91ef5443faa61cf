#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/Child.h"
#include "bench/TemporaryFolder.h"
#include "platform/linux/LinuxPlatform.h"

namespace tavlo::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSizes[] = {1000, 10'000, 100'000};
constexpr const char* kLogFile = "TavloLogFile.txt";

std::string fileSystemOf(const fs::path& folder) {
  struct statfs status {};
  if (::statfs(folder.c_str(), &status) != 0) return "a folder that is not there";
  using Name = std::pair<unsigned long, const char*>;
  constexpr std::array kNames{Name{TMPFS_MAGIC, "tmpfs"}, Name{EXT4_SUPER_MAGIC, "ext4"}, Name{XFS_SUPER_MAGIC, "xfs"},
                              Name{BTRFS_SUPER_MAGIC, "btrfs"}, Name{OVERLAYFS_SUPER_MAGIC, "overlayfs"}};
  for (const auto& [magic, name] : kNames) {
    if (static_cast<unsigned long>(status.f_type) == magic) return name;
  }
  std::array<char, 40> number{};
  std::snprintf(number.data(), number.size(), "file system %lx", static_cast<unsigned long>(status.f_type));
  return number.data();
}

// A cache directory of empty files that have names as banners have, and the log file. It is on the disk as well, as
// that of earlier days is.
class Cache {
 public:
  Cache(const fs::path& in, std::size_t files)
      : container_(in), directory_(container_.path() / "Documents/TavloCache") {
    fs::create_directories(directory_);
    const int folder = ::open(directory_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::array<char, 33> name{};
    bool succeeded = put(folder, kLogFile);
    for (std::size_t i = 1; i <= files && succeeded; ++i) {
      const unsigned long long spread = i * 0x9E3779B97F4A7C15U;
      std::snprintf(name.data(), name.size(), "%016llX%016llX", spread, spread * 0xD1342543DE82EF95U);
      succeeded = put(folder, name.data());
    }
    succeeded = succeeded && ::syncfs(folder) == 0;
    ::close(folder);
    if (!succeeded) throw std::runtime_error("cannot fill " + directory_.string());
    platform::install(
        linux_platform::make({.container = container_.path(), .domain = "tavlo-bench", .quietConsole = true}));
  }

  [[nodiscard]] const fs::path& directory() const { return directory_; }

 private:
  [[nodiscard]] static bool put(int folder, const char* name) {
    const int file = ::openat(folder, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    return file >= 0 && ::close(file) == 0;
  }

  const TemporaryFolder container_;
  const fs::path directory_;
};

// Where the caches are made, one a call: ext4 looks at every inode that was freed lately before it takes the next, so
// that each is to be in a part of the disk of its own.
class Place {
 public:
  explicit Place(const fs::path& in) : folder_(in) {
    const int folder = ::open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    int flags = 0;
    if (::ioctl(folder, FS_IOC_GETFLAGS, &flags) == 0) {
      flags |= FS_TOPDIR_FL;
      static_cast<void>(::ioctl(folder, FS_IOC_SETFLAGS, &flags));  // a file system without it does not need it
    }
    ::close(folder);
  }

  void fill(std::size_t files) {
    cache_.reset();
    cache_.emplace(folder_.path(), files);
  }
  [[nodiscard]] const fs::path& cache() const { return cache_.value().directory(); }

 private:
  const TemporaryFolder folder_;
  std::optional<Cache> cache_;
};

// What has been left, listed when it is asked for, which is not timed.
struct Left {
  fs::path in;
};

std::string answerOf(const Left& left) {
  std::string names;
  for (const auto& entry : fs::directory_iterator(left.in)) names += entry.path().filename().string() + '\n';
  return names;
}

// What nobody can leave out: the listing, and a call for each name.
void listAndUnlink(const fs::path& directory) {
  DIR* const listing = ::opendir(directory.c_str());
  while (const dirent* const entry = ::readdir(listing)) {
    if (entry->d_type == DT_REG && std::strcmp(entry->d_name, kLogFile) != 0) {
      ::unlinkat(::dirfd(listing), entry->d_name, 0);
    }
  }
  ::closedir(listing);
}

void addOn(Races& races, const std::string& fileSystem, const fs::path& folder) {
  for (const std::size_t size : kSizes) {
    const auto place = std::make_shared<std::optional<Place>>();
    races.add("clearCache on " + fileSystem, std::to_string(size) + " files")
        .size(size)
        .setUp([place, folder] { place->emplace(folder); })
        .prepare([place, files = races.sized(size)] { (*place)->fill(files); })
        .ours([place] {
          TavloUtility::clearCache();
          return Left{(*place)->cache()};
        })
        .peer("find -delete",
              [place] {
                run({"find", (*place)->cache(), "-mindepth", "1", "!", "-name", kLogFile, "-delete"});
                return Left{(*place)->cache()};
              })
        .peer("remove_all",
              [place] {
                for (const auto& entry : fs::directory_iterator((*place)->cache())) {
                  if (entry.path().filename() != kLogFile) fs::remove_all(entry);
                }
                return Left{(*place)->cache()};
              })
        .limit("readdir and unlinkat", [place] { listAndUnlink((*place)->cache()); })
        .atMost(1.05, "find -delete")
        .atMost(0.75, "remove_all");
  }
}

}  // namespace

void addClearing(Races& races) {
  const fs::path memory = "/dev/shm";
  const fs::path disk = fs::temp_directory_path();
  if (fileSystemOf(memory) == "tmpfs") {
    addOn(races, "tmpfs", memory);
  } else {
    std::fprintf(stderr, "tavlo_bench: no clearing on tmpfs: /dev/shm is none\n");
  }
  if (const std::string name = fileSystemOf(disk); name != "tmpfs") {
    addOn(races, name, disk);
  } else {
    std::fprintf(stderr, "tavlo_bench: no clearing on a disk: %s is in memory; set TMPDIR\n", disk.c_str());
  }
}

}  // namespace tavlo::bench
