#include "common/Format.h"
#include "common/IntValue.h"
#include "platform/Platform.h"
#include "request/Contracts.h"
#include "request/DataBaseHandler.h"

namespace tavlo {
namespace {

void setPresent(ValueMap& map, std::string_view key, std::optional<Value> value) {
  if (value) map.append(Value::literal(key), *std::move(value));
}

// Each value is read anew where it is used: for the log, for the test, for the payload. A record that is
// missing from its list reads as absent throughout. The line's memory serves all records.
void visit(const NetworkTrackerDetail* record, platform::Console& console, std::string& line, ValueList& kept) {
  using Detail = NetworkTrackerDetail;
  const auto read = [record](std::optional<Value> (Detail::*value)() const) {
    return record ? (record->*value)() : std::nullopt;
  };

  line.clear();
  appendTextForm(line, read(&Detail::networkID));
  line += "  ";
  appendTextForm(line, read(&Detail::event));
  line += "  ";
  appendTextForm(line, read(&Detail::count));
  console.log(line);

  if (intValue(read(&Detail::count)) <= 0) return;
  ValueMap map;
  map.reserve(3);
  setPresent(map, "network_id", read(&Detail::networkID));
  setPresent(map, "event", read(&Detail::event));
  setPresent(map, "count", read(&Detail::count));
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
    std::string line;
    kept.reserve(records->size());
    for (const auto& record : *records) visit(record.get(), platform->console(), line, kept);
  }
  return Value::list(std::move(kept));
}

}  // namespace tavlo
