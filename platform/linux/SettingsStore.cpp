#include "platform/linux/SettingsStore.h"

#include <utility>

#include "common/PropertyList.h"
#include "platform/linux/FileLock.h"

namespace tavlo::linux_platform {
namespace {

using State = SettingsFile::State;

// Whether the entry comes back from a file: the codec refuses some kinds, and nesting that it would not read.
bool isStorable(const Value& value, std::string_view key) {
  const auto bytes = property_list::encode(Value::map({{Value(key), value}}));
  if (!bytes) return false;
  const auto decoded = property_list::decode(*bytes).value;
  return decoded && decoded->ifMap()->find(key);
}

}  // namespace

// The right to write, of one thread at a time; given back at the end, also on the way of an exception.
class SettingsStore::Turn {
 public:
  Turn(SettingsStore& store, std::unique_lock<std::mutex>& lock) : store_(store), lock_(lock) {
    store_.turnTaken_ = true;
    lock_.unlock();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (!lock_.owns_lock()) lock_.lock();
    store_.turnTaken_ = false;
    store_.turnEnds_.notify_all();
  }

 private:
  SettingsStore& store_;
  std::unique_lock<std::mutex>& lock_;
};

SettingsStore::SettingsStore(Container container, platform::Console& console, Syscalls& syscalls,
                             std::chrono::milliseconds limit)
    : container_(std::move(container)),
      file_(syscalls, container_.settingsFile()),
      console_(console),
      syscalls_(syscalls),
      limit_(limit) {}

std::optional<Value> SettingsStore::objectForKey(std::string_view key) {
  std::optional<Value> answer;
  std::string damage;
  {
    const std::lock_guard lock(mutex_);
    if (const auto change = pending_.find(key); change != pending_.end()) return change->second.value;
    damage = refresh();
    if (const Value* const value = cache_.entries.find(key)) answer = *value;
  }
  if (!damage.empty()) tellOfDamage(damage);
  return answer;
}

void SettingsStore::setObjectForKey(const Value& value, std::string_view key) {
  if (!isStorable(value, key)) {
    console_.log("TavloUtility: the setting \"" + std::string(key) + "\" is no property list; it is ignored");
    return;
  }
  const std::lock_guard lock(mutex_);
  pending_.insert_or_assign(std::string(key), Change{.value = value, .number = ++newest_});
}

bool SettingsStore::synchronize() {
  const auto deadline = syscalls_.steadyNow() + limit_;
  std::unique_lock lock(mutex_);
  const std::uint64_t mine = newest_;
  if (!turnEnds_.wait_until(lock, deadline, [&] { return !turnTaken_ || written_ >= mine; })) return false;
  if (written_ >= mine) return true;

  const Changes changes = pending_;
  const std::uint64_t newest = newest_;
  const Turn turn(*this, lock);
  const bool written = write(changes, deadline);
  lock.lock();
  if (written) {
    written_ = newest;
    std::erase_if(pending_, [&](const auto& entry) { return entry.second.number <= newest; });
  }
  return written;
}

// Brings the cache up to date with the file. The answer is what is wrong with a damaged one.
std::string SettingsStore::refresh() {
  const auto identity = file_.identity();
  if (!identity) {
    cache_ = {};
  } else if (cache_.identity != identity) {
    cache_ = file_.read();
  }
  return cache_.error;
}

bool SettingsStore::write(const Changes& changes, TimePoint deadline) {
  for (const auto& folder : {container_.preferences(), container_.temporary()}) {
    if (!container_.makeFolder(folder, foldersToSync_, syscalls_)) return false;
  }
  foldersToSync_ = Container::Durable::fresh;

  const FileLock lock(syscalls_, file_.lockPath(), deadline);
  if (!lock) return false;
  SettingsFile::Contents contents = file_.read();
  if (contents.state == State::unreadable) return false;
  if (contents.state == State::damaged) {
    tellOfDamage(contents.error);
    if (!file_.setAside()) return false;
  }
  for (const auto& [key, change] : changes) contents.entries.set(Value(key), change.value);
  return file_.write(std::move(contents.entries), container_.temporary());
}

void SettingsStore::tellOfDamage(const std::string& error) {
  if (toldOfDamage_.exchange(true)) return;
  console_.log("TavloUtility: the settings file " + file_.path().string() + " is damaged (" + error +
               "); it counts as empty, and the next write keeps it as " + file_.damagedPath().string());
}

}  // namespace tavlo::linux_platform
