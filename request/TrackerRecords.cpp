#include <array>

#include "common/Format.h"
#include "common/IntValue.h"
#include "platform/Platform.h"
#include "request/Contracts.h"
#include "request/DataBaseHandler.h"

namespace tavlo {
namespace {

// A record that the handler left out of its list reads as absent throughout.
class NoDetail final : public NetworkTrackerDetail {
 public:
  std::optional<Value> networkID() const override { return std::nullopt; }
  std::optional<Value> event() const override { return std::nullopt; }
  std::optional<Value> count() const override { return std::nullopt; }
};

void logRecord(platform::Console& console, const NetworkTrackerDetail& record) {
  std::string line;
  appendTextForm(line, record.networkID());
  line += "  ";
  appendTextForm(line, record.event());
  line += "  ";
  appendTextForm(line, record.count());
  console.log(line);
}

void setPresent(ValueMap& map, std::string_view key, std::optional<Value> value) {
  if (value) map.append(key, *std::move(value));
}

// Each value is read anew where it is used: for the log, for the test, for the payload.
void visit(const NetworkTrackerDetail& record, platform::Console& console, ValueList& kept) {
  logRecord(console, record);
  if (intValue(record.count()) <= 0) return;
  ValueMap map;
  map.reserve(3);
  setPresent(map, "network_id", record.networkID());
  setPresent(map, "event", record.event());
  setPresent(map, "count", record.count());
  kept.push_back(Value::map(std::move(map)));
}

}  // namespace

Value networkEventCounts() {
  ValueList kept;
  const auto handler = DataBaseHandler::sharedInastance();
  const auto records = handler ? handler->getNetworkTrackerDetails() : std::nullopt;
  // More than one, not at least one: a lone record is not reported, on purpose.
  if (records && records->size() > 1) {
    static const NoDetail absent;
    const auto platform = platform::current();
    for (const auto& record : *records) visit(record ? *record : absent, platform->console(), kept);
  }
  return Value::list(std::move(kept));
}

}  // namespace tavlo
