// cache ls: what lies in the cache directory.
#include <array>
#include <chrono>
#include <string>

#include "cli/ArchiveJson.h"
#include "cli/CacheEntries.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"

namespace tavlo::cli {
namespace {

std::int64_t secondsNow() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// In the largest unit of which there is a whole one.
std::string ageText(std::int64_t seconds) {
  struct Unit {
    std::int64_t seconds;
    const char* name;
  };
  constexpr auto kUnits = std::to_array<Unit>({{86400, " d"}, {3600, " h"}, {60, " min"}});
  if (seconds < 0) return "in the future";
  for (const Unit& unit : kUnits) {
    if (seconds >= unit.seconds) return std::to_string(seconds / unit.seconds) + unit.name;
  }
  return std::to_string(seconds) + " s";
}

void answerTable(const std::vector<CacheEntry>& entries, const Run& run) {
  const std::int64_t now = secondsNow();
  std::vector<std::vector<Cell>> rows{headings({"name", "kind", "bytes", "age"})};
  for (const CacheEntry& entry : entries) {
    rows.push_back({{.text = displayed(entry.name)},
                    {.text = std::string(entry.kind)},
                    {.text = entry.size ? std::to_string(*entry.size) : "-"},
                    {.text = ageText(now - entry.modified)}});
  }
  run.output.answer(table(rows, run.output.tableLook()));
}

void answerJson(const std::vector<CacheEntry>& entries, const Run& run) {
  ValueList list;
  for (const CacheEntry& entry : entries) {
    list.push_back(Value::map({{"name", entry.name},
                               {"kind", entry.kind},
                               {"bytes", entry.size ? Value(*entry.size) : Value(Uid{})},
                               {"modified", entry.modified}}));
  }
  run.output.answerLine(toArchiveJson(Value::list(std::move(list)), ArchiveLayout::oneLine));
}

}  // namespace

void execute(const ListCacheEntries& /*command*/, const Run& run) {
  const auto folder = cacheFolder(Place(run.globals));
  const auto entries = cacheEntries(folder);
  if (!entries) run.output.note("there is no cache directory yet: " + folder.string());
  if (run.globals.json) return answerJson(entries.value_or(std::vector<CacheEntry>()), run);
  if (entries && !entries->empty()) answerTable(*entries, run);
}

}  // namespace tavlo::cli
