// request: what the SDK sends, of a session file or of what is stored.
#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/Place.h"
#include "cli/Requests.h"
#include "cli/SessionFile.h"
#include "host/UniqueUserCounters.h"
#include "platform/linux/LinuxPlatform.h"

namespace tavlo::cli {
namespace {

// Reads only what the request needs, so that a damaged database is in the way of those alone that need it. The
// records are read at once: a database that cannot be read is an error here, and not a request without them.
void installStored(const Contract& contract, const Run& run) {
  const Place place(run.globals);
  if (contract.name == kInAppContract.name) place.requireReadableSettings();
  platform::install(place.makePlatform());
  const bool readsDatabase = contract.name == kUserContract.name || contract.name == kTrackerContract.name;
  if (const auto database = readsDatabase ? place.openExistingDatabase() : nullptr) {
    TavloUniqueUserHandler::install(std::make_shared<host::UniqueUserCounters>(database));
    DataBaseHandler::install(fixedRecords(host::TrackerDatabase(database).list()));
  }
  run.output.note("no session file is given: package values are absent, and what is stored in " +
                  place.folder().string() + " is used");
}

}  // namespace

void execute(const MakeRequest& command, const Run& run) {
  if (command.session) {
    linux_platform::Options outside;
    outside.quietConsole = run.globals.quiet;
    install(readSessionFile(*command.session), linux_platform::make(outside));
  } else {
    installStored(*command.contract, run);
  }
  if (command.pretty) {
    const auto pairs = explainRequest(*command.contract);
    if (run.globals.json) {
      run.output.answerLine(toJson(explanationValue(pairs)));
    } else {
      run.output.answer(explanationTable(pairs, run.output.tableLook()));
    }
    return;
  }
  const std::string text = requestText(*command.contract);
  const bool isJsonAlready = command.contract->form == Form::map;
  run.output.answerLine(run.globals.json && !isJsonAlready ? toJson(text) : text);
}

}  // namespace tavlo::cli
