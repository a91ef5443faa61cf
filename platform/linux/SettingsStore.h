// SettingsStore: the user settings of one domain, a file that processes share.
//
// Values   what a property list can hold. A value that none can (a URL, an object, more than 512 deep), or a
//          key that is not UTF-8, is ignored, with a console line. A text that is not UTF-8 comes back as data
//          once it is written. The file has mode 0600.
// Absent   an entry that is not set, and every entry while the file cannot be read (no right to, not a regular
//          file, larger than 64 MiB, an error of the disk), except those that are set and not written yet.
// Logs     the console has one line in the life of the store when it meets a damaged file. Such a file counts
//          as empty; the next write keeps it as DOMAIN.plist.damaged.
// Threads  any thread, any time. Changes of several threads that wait for each other are written in one go.
//
// synchronize() reads the file, applies the pending changes and replaces it, under a lock that excludes every
// other process that does so; entries that others set stay. It waits for its turn no longer than the limit.
// An unreadable file is never replaced.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Console.h"
#include "platform/UserDefaults.h"
#include "platform/linux/Container.h"
#include "platform/linux/SettingsFile.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class SettingsStore final : public platform::UserDefaults {
 public:
  static constexpr std::chrono::milliseconds kLimit{2000};

  SettingsStore(Container container, platform::Console& console, Syscalls& syscalls = Syscalls::real(),
                std::chrono::milliseconds limit = kLimit);

  std::optional<Value> objectForKey(std::string_view key) override;
  void setObjectForKey(const Value& value, std::string_view key) override;
  bool synchronize() override;

 private:
  struct Change {
    Value value;
    std::uint64_t number;
  };
  using Changes = std::map<std::string, Change, std::less<>>;
  using TimePoint = std::chrono::steady_clock::time_point;

  class Turn;

  std::string refresh();
  bool write(const Changes& changes, TimePoint deadline);
  void tellOfDamage(const std::string& error);

  const Container container_;
  const SettingsFile file_;
  platform::Console& console_;
  Syscalls& syscalls_;
  const std::chrono::milliseconds limit_;
  std::atomic<bool> toldOfDamage_ = false;

  std::mutex mutex_;  // never held while the disk is written to or the console is called
  std::condition_variable turnEnds_;
  bool turnTaken_ = false;     // a thread is writing; what follows down to cache_ it may touch only locked
  Changes pending_;            // not on the disk yet, or not known to be
  std::uint64_t newest_ = 0;   // the number of the last change
  std::uint64_t written_ = 0;  // all changes up to this one are on the disk
  SettingsFile::Contents cache_;

  Container::Durable foldersToSync_ = Container::Durable::all;  // belongs to the thread whose turn it is
};

}  // namespace tavlo::linux_platform
