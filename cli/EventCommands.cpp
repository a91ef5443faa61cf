// event add, list and clear, and use: what the host keeps in its database.
#include <string>

#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/Place.h"
#include "common/Format.h"
#include "host/TrackerDatabase.h"
#include "host/UniqueUserCounters.h"

namespace tavlo::cli {
namespace {

Value valueOrNull(const std::optional<Value>& value) { return value ? *value : Value(); }

std::string shown(const std::optional<Value>& value) {
  return value ? displayed(textForm(*value)) : std::string(kAbsent);
}

std::vector<host::TrackerEvent> storedEvents(const Place& place) {
  const auto database = place.openExistingDatabase();
  return database ? host::TrackerDatabase(database).list() : std::vector<host::TrackerEvent>();
}

}  // namespace

void execute(const AddEvent& command, const Run& run) {
  host::TrackerDatabase(Place(run.globals).openDatabase()).addEvent(command.networkID, command.event, command.count);
}

void execute(const ListEvents& /*command*/, const Run& run) {
  const auto events = storedEvents(Place(run.globals));
  if (!run.globals.json) {
    for (const auto& event : events) {
      run.output.answerLine(shown(event.networkID) + '\t' + shown(event.event) + '\t' + shown(event.count));
    }
    return;
  }
  ValueList list;
  for (const auto& event : events) {
    list.push_back(Value::map({{"networkID", valueOrNull(event.networkID)},
                               {"event", valueOrNull(event.event)},
                               {"count", valueOrNull(event.count)}}));
  }
  run.output.answerLine(toJson(Value::list(std::move(list))));
}

void execute(const ClearEvents& /*command*/, const Run& run) {
  if (const auto database = Place(run.globals).openExistingDatabase()) host::TrackerDatabase(database).clear();
}

void execute(const RecordUse& /*command*/, const Run& run) {
  host::UniqueUserCounters(Place(run.globals).openDatabase()).recordUse();
}

}  // namespace tavlo::cli
