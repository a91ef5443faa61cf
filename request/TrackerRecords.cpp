#include "common/Format.h"
#include "common/IntValue.h"
#include "platform/Platform.h"
#include "request/Contracts.h"
#include "request/DataBaseHandler.h"

namespace tavlo {
namespace {

// The keys of all entries, shared by them. Never destroyed: a thread may still build a payload when main is left.
struct Keys {
  Value networkID = "network_id";
  Value event = "event";
  Value count = "count";
};
const Keys& keys() {
  static const auto* const keys = new Keys;
  return *keys;
}

void setPresent(ValueMap& map, const Value& key, std::optional<Value> value) {
  if (value) map.append(key, *std::move(value));
}

// Each value is read anew where it is used: for the log, for the test, for the payload. A record that is
// missing from its list reads as absent throughout.
void visit(const NetworkTrackerDetail* record, platform::Console& console, ValueList& kept) {
  using Detail = NetworkTrackerDetail;
  const auto read = [record](std::optional<Value> (Detail::*value)() const) {
    return record ? (record->*value)() : std::nullopt;
  };

  std::string line;
  appendTextForm(line, read(&Detail::networkID));
  line += "  ";
  appendTextForm(line, read(&Detail::event));
  line += "  ";
  appendTextForm(line, read(&Detail::count));
  console.log(line);

  if (intValue(read(&Detail::count)) <= 0) return;
  ValueMap map;
  map.reserve(3);
  setPresent(map, keys().networkID, read(&Detail::networkID));
  setPresent(map, keys().event, read(&Detail::event));
  setPresent(map, keys().count, read(&Detail::count));
  kept.push_back(Value::map(std::move(map)));
}

}  // namespace

Value networkEventCounts() {
  ValueList kept;
  const auto handler = DataBaseHandler::sharedInastance();
  const auto records = handler ? handler->getNetworkTrackerDetails() : std::nullopt;
  // More than one, not at least one: a lone record is not reported, on purpose.
  if (records && records->size() > 1) {
    const auto platform = platform::current();
    for (const auto& record : *records) visit(record.get(), platform->console(), kept);
  }
  return Value::list(std::move(kept));
}

}  // namespace tavlo
