// The persistent settings store of the host app.
//
// Values   any property-list value under a text key. The store is shared with the host app: entries that
//          the component does not know stay as they are.
// Absent   objectForKey() gives std::nullopt for a key that was never set.
// Threads  any thread, any time.
#pragma once

#include <optional>
#include <string_view>

#include "common/Value.h"

namespace tavlo::platform {

class UserDefaults {
 public:
  UserDefaults() = default;
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;
  virtual ~UserDefaults() = default;

  // The value under the key, with every change made by this process so far, written out or not.
  [[nodiscard]] virtual std::optional<Value> objectForKey(std::string_view key) = 0;

  // Puts the value under the key, replacing what was there. It is on disk only after synchronize().
  virtual void setObjectForKey(const Value& value, std::string_view key) = 0;

  // Writes all pending changes out. True: they survive a crash of the process and of the machine. False:
  // what was on disk stays whole, and the changes stay pending for the next call.
  [[nodiscard]] virtual bool synchronize() = 0;
};

}  // namespace tavlo::platform
