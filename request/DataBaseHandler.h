// DataBaseHandler: the SDK's store of tracker records, and NetworkTrackerDetail, one record of it. The host
// app brings them (host/TrackerDatabase.h keeps them in a file) and installs the handler.
//
// Values   a record's three values are texts or numbers and are sent on as they are.
// Absent   an absent list counts as an empty one. An absent value is logged as "(null)" and left out of the
//          payload. With no handler installed there are no records.
// Threads  any thread, any time.
// Throws   nothing: a handler that cannot read its store answers an absent list.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "common/Value.h"

namespace tavlo {

class NetworkTrackerDetail {
 public:
  NetworkTrackerDetail() = default;
  NetworkTrackerDetail(const NetworkTrackerDetail&) = delete;
  NetworkTrackerDetail& operator=(const NetworkTrackerDetail&) = delete;
  virtual ~NetworkTrackerDetail() = default;

  [[nodiscard]] virtual std::optional<Value> networkID() const = 0;
  [[nodiscard]] virtual std::optional<Value> event() const = 0;
  [[nodiscard]] virtual std::optional<Value> count() const = 0;
};

using NetworkTrackerDetails = std::vector<std::shared_ptr<const NetworkTrackerDetail>>;

class DataBaseHandler {
 public:
  DataBaseHandler() = default;
  DataBaseHandler(const DataBaseHandler&) = delete;
  DataBaseHandler& operator=(const DataBaseHandler&) = delete;
  virtual ~DataBaseHandler() = default;

  // The installed handler, nullptr when there is none. "Inastance" is the operation's name.
  [[nodiscard]] static std::shared_ptr<DataBaseHandler> sharedInastance();
  static void install(std::shared_ptr<DataBaseHandler> handler);

  // The stored records, in the handler's order.
  [[nodiscard]] virtual std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() = 0;
};

}  // namespace tavlo
