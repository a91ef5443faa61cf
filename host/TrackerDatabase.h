// TrackerDatabase: the tracker records, kept in the host's database.
//
//   auto tracker = std::make_shared<tavlo::host::TrackerDatabase>(database);
//   tavlo::DataBaseHandler::install(tracker);
//   tracker->addEvent("network-7", "impression");
//
// Values   one record for each pair of network id and event, in the order in which the pairs were first
//          added. Texts, integers of 64 bits and reals are kept as they are, and 1, 1.0 and "1" are three
//          different ids; a 32-bit real is kept as the same number in 64 bits.
// Absent   no value of a record that was added here is absent. After clear() there are no records.
// Logs     "getNetworkTrackerDetails() - ERROR: <what the database says>", when the records cannot be read.
// Durable  as host/Database.h says: an added event is on disk when addEvent() returns.
// Threads  any thread, any time. Answers are copies: later changes do not reach them.
// Throws   DatabaseError, all but getNetworkTrackerDetails().
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "common/Value.h"
#include "host/Database.h"
#include "request/DataBaseHandler.h"

namespace tavlo::host {

struct TrackerEvent {
  std::optional<Value> networkID;
  std::optional<Value> event;
  std::optional<Value> count;

  friend bool operator==(const TrackerEvent&, const TrackerEvent&) = default;
};

// A record of this event.
[[nodiscard]] std::shared_ptr<const NetworkTrackerDetail> detailOf(TrackerEvent event);

class TrackerDatabase final : public DataBaseHandler {
 public:
  explicit TrackerDatabase(std::shared_ptr<Database> database);

  // Adds to the count of the pair; a count stops growing at 2^63 - 1. Throws std::invalid_argument for an id
  // or an event that is neither a text nor a number, or an integer beyond 64 bits, and for a count below 1.
  void addEvent(const Value& networkID, const Value& event, std::int64_t count = 1);

  [[nodiscard]] std::vector<TrackerEvent> list() const;
  void clear();

  // The same records. Absent when they cannot be read.
  [[nodiscard]] std::optional<NetworkTrackerDetails> getNetworkTrackerDetails() override;

 private:
  const std::shared_ptr<Database> database_;
};

}  // namespace tavlo::host
