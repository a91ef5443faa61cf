// id get, set and show.
#include <algorithm>
#include <array>
#include <string>

#include "TavloUtility.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/Json.h"
#include "cli/Place.h"
#include "common/Format.h"

namespace tavlo::cli {
namespace {

struct IdentifierRow {
  Identifier identifier;
  const char* key;  // in the settings
  Text (*get)();
  void (*set)(const Text&);
};

constexpr auto kIdentifiers = std::to_array<IdentifierRow>({
    {Identifier::app, "ApplicationId", &TavloUtility::getAppIdFromUserDefault, &TavloUtility::setAppIdToUserDefault},
    {Identifier::optional, "OptionalId", &TavloUtility::getOptionalIdFromUserDefault,
     &TavloUtility::setOptionalIdToUserDefault},
    {Identifier::security, "SecurityKey", &TavloUtility::getSecurityKeyTFromUserDefault,
     &TavloUtility::setSecurityKeyToUserDefault},
});

const IdentifierRow& rowOf(Identifier identifier) {
  return *std::find_if(kIdentifiers.begin(), kIdentifiers.end(),
                       [=](const IdentifierRow& row) { return row.identifier == identifier; });
}

// The mask tells that there is a key, and not how long it is.
Text shownValue(const IdentifierRow& row, bool reveal) {
  const Text value = row.get();
  const bool masked = value && row.identifier == Identifier::security && !reveal;
  return masked ? Text("********") : value;
}

void installStored(const Run& run) {
  const Place place(run.globals);
  place.requireReadableSettings();
  platform::install(place.makePlatform());
}

}  // namespace

void execute(const GetIdentifier& command, const Run& run) {
  installStored(run);
  answerText(shownValue(rowOf(command.identifier), command.reveal), run);
}

void execute(const SetIdentifier& command, const Run& run) {
  const Place place(run.globals);
  const IdentifierRow& row = rowOf(command.identifier);
  if (command.value.empty()) {
    throw Failure(std::string(row.key) + " was not stored: an empty value is ignored; give one that is not");
  }
  const auto platform = place.makePlatform();
  platform::install(platform);
  row.set(command.value);
  // The setter does not tell whether the value is on disk; what is not is written now, or this fails as well.
  if (!platform->standardUserDefaults().synchronize()) {
    throw Failure(std::string(row.key) + " was not stored: " + place.settingsFile().string() +
                  " could not be written; check the rights to its folder, the free space, and whether another "
                  "program holds its lock");
  }
}

void execute(const ShowIdentifiers& command, const Run& run) {
  installStored(run);
  ValueMap json;
  std::vector<std::vector<Cell>> rows;
  for (const IdentifierRow& row : kIdentifiers) {
    const Text value = shownValue(row, command.reveal);
    json.append(row.key, value ? Value(*value) : Value());
    rows.push_back({{.text = row.key}, {.text = value ? displayed(*value) : std::string(kAbsent)}});
  }
  if (run.globals.json) {
    run.output.answerLine(toJson(Value::map(std::move(json))));
  } else {
    run.output.answer(table(rows));
  }
}

}  // namespace tavlo::cli
