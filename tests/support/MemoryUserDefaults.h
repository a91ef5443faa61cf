// An in-memory settings store. What is synchronized lies on a Disk, which a second store can be opened on,
// as after a restart.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/UserDefaults.h"

namespace tavlo::test {

class MemoryUserDefaults final : public platform::UserDefaults {
 public:
  using Entries = std::map<std::string, Value, std::less<>>;

  struct Disk {
    std::mutex mutex;
    Entries entries;
    bool broken = false;  // synchronize() fails while it is set
  };

  explicit MemoryUserDefaults(std::shared_ptr<Disk> disk = std::make_shared<Disk>()) : disk_(std::move(disk)) {}

  std::optional<Value> objectForKey(std::string_view key) override {
    const std::lock_guard lock(disk_->mutex);
    for (const Entries* entries : {&pending_, &disk_->entries}) {
      if (const auto entry = entries->find(key); entry != entries->end()) return entry->second;
    }
    return std::nullopt;
  }

  void setObjectForKey(const Value& value, std::string_view key) override {
    const std::lock_guard lock(disk_->mutex);
    pending_.insert_or_assign(std::string(key), value);
  }

  bool synchronize() override {
    const std::lock_guard lock(disk_->mutex);
    if (pending_.empty()) return true;
    if (disk_->broken) return false;
    for (const auto& [key, value] : pending_) disk_->entries.insert_or_assign(key, value);
    pending_.clear();
    return true;
  }

  // What is on the disk, and the switch that makes synchronize() fail.
  [[nodiscard]] Entries stored() const {
    const std::lock_guard lock(disk_->mutex);
    return disk_->entries;
  }
  void breakDisk(bool broken) {
    const std::lock_guard lock(disk_->mutex);
    disk_->broken = broken;
  }

 private:
  std::shared_ptr<Disk> disk_;
  Entries pending_;  // guarded by the disk's mutex
};

}  // namespace tavlo::test
