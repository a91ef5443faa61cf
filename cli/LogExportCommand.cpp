// log export: the SDK's log file, offered to the other apps of the desktop.
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "TavloUtility.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/Event.h"
#include "cli/Interrupt.h"
#include "cli/Json.h"
#include "cli/LogFile.h"
#include "cli/Place.h"
#include "common/Path.h"
#include "common/Slot.h"

namespace tavlo::cli {
namespace {

using linux_platform::MenuOutcome;

// What becomes of the menu, told on any thread.
class Outcome {
 public:
  void take(MenuOutcome outcome, std::string_view explanation) {
    const std::lock_guard lock(mutex_);
    if (!told_) told_.emplace(outcome, explanation);
    event_.happen();
  }
  [[nodiscard]] std::optional<std::pair<MenuOutcome, std::string>> told() const {
    const std::lock_guard lock(mutex_);
    return told_;
  }
  WaitEnd wait(const Patience& patience) { return told() ? WaitEnd::done : event_.wait(patience); }

 private:
  Event event_;
  mutable std::mutex mutex_;
  std::optional<std::pair<MenuOutcome, std::string>> told_;
};

void answer(const char* outcome, const std::string& path, const Run& run) {
  if (!run.globals.json) return run.output.answerLine(outcome);
  run.output.answerLine(toJson(Value::map({{"outcome", outcome}, {"path", path}})));
}

std::string remedy(const std::filesystem::path& path) {
  try {
    if (!LogFile::open(path)) {
      return "the SDK's operations write the log once the cache directory is there, as tavlo cache fetch does";
    }
  } catch (const Failure&) {
    return "check what lies there, and the rights to it";
  }
  return "run it in a desktop session with a portal, or take the file from where it is: " + path.string();
}

}  // namespace

void execute(const ExportLog& /*command*/, const Run& run) {
  const Interrupt interrupt;  // before there are other threads
  const auto outcome = std::make_shared<Outcome>();
  linux_platform::Options outside;
  outside.onOpenInMenu = [outcome](MenuOutcome come, std::string_view why) { outcome->take(come, why); };
  const CacheSession session(run, outside);
  const auto path = session.folder() / kLogFileName;

  TavloUtility::getExportTavloSDKLog(nullptr);
  if (!outcome->told()) run.output.note("choose an app on the desktop; Ctrl-C takes the menu back");
  const WaitEnd end =
      outcome->wait({.until = std::chrono::steady_clock::time_point::max(), .wakeUp = interrupt.descriptor()});
  processSlot<platform::DocumentInteractionController>().store(nullptr);  // with it goes a menu that is still up
  if (end != WaitEnd::done) throw Failure("interrupted; the menu is taken back, and nothing was opened");

  const auto [come, why] = *outcome->told();
  if (come == MenuOutcome::opened) return answer("opened", path.string(), run);
  if (come == MenuOutcome::cancelled) return answer("cancelled", path.string(), run);
  throw Failure("the log was not handed on: " + why + "; " + remedy(path));
}

}  // namespace tavlo::cli
