#include "host/TrackerDatabase.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/Logger.h"

namespace tavlo::host {
namespace {

constexpr const char* kUnreadable = "getNetworkTrackerDetails() - ERROR: ";

constexpr const char* kAdd = R"(
INSERT INTO tracker_event (network_id, event, count) VALUES (?1, ?2, ?3)
ON CONFLICT (network_id, typeof(network_id), event, typeof(event)) DO UPDATE
SET count = CASE WHEN count > ?4 - excluded.count THEN ?4 ELSE count + excluded.count END)";

class Detail final : public NetworkTrackerDetail {
 public:
  explicit Detail(TrackerEvent event) : event_(std::move(event)) {}

  std::optional<Value> networkID() const override { return event_.networkID; }
  std::optional<Value> event() const override { return event_.event; }
  std::optional<Value> count() const override { return event_.count; }

 private:
  const TrackerEvent event_;
};

void requireTextOrNumber(const char* name, const Value& value) {
  if (value.isText()) return;
  if (const Integer* const integer = value.ifInteger(); integer != nullptr && integer->fitsSigned()) return;
  if (const Real* const real = value.ifReal(); real != nullptr && !std::isnan(real->value)) return;
  throw std::invalid_argument(std::string("addEvent: the ") + name + " must be a text or a number of 64 bits");
}

std::optional<Value> presentOf(const Value& stored) { return stored.isNull() ? std::nullopt : std::optional(stored); }

}  // namespace

std::shared_ptr<const NetworkTrackerDetail> detailOf(TrackerEvent event) {
  return std::make_shared<Detail>(std::move(event));
}

TrackerDatabase::TrackerDatabase(std::shared_ptr<Database> database) : database_(std::move(database)) {}

void TrackerDatabase::addEvent(const Value& networkID, const Value& event, std::int64_t count) {
  requireTextOrNumber("network id", networkID);
  requireTextOrNumber("event", event);
  if (count < 1) throw std::invalid_argument("addEvent: the count must be 1 or more, not " + std::to_string(count));
  database_->run(kAdd, {networkID, event, count, std::numeric_limits<std::int64_t>::max()});
}

std::vector<TrackerEvent> TrackerDatabase::list() const {
  std::vector<TrackerEvent> events;
  for (const auto& row : database_->run("SELECT network_id, event, count FROM tracker_event ORDER BY id")) {
    events.push_back({.networkID = presentOf(row[0]), .event = presentOf(row[1]), .count = presentOf(row[2])});
  }
  return events;
}

void TrackerDatabase::clear() { database_->run("DELETE FROM tracker_event"); }

std::optional<NetworkTrackerDetails> TrackerDatabase::getNetworkTrackerDetails() {
  try {
    NetworkTrackerDetails details;
    for (TrackerEvent& event : list()) details.push_back(detailOf(std::move(event)));
    return details;
  } catch (const DatabaseError& error) {
    Logger::printLog(kUnreadable + std::string(error.what()));
    return std::nullopt;
  }
}

}  // namespace tavlo::host
