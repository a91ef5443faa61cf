// Any text is a session or a Failure that names the file and a line of it. A session can be written as JSON again, and
// comes back the same.
#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/Errors.h"
#include "cli/Json.h"
#include "cli/SessionFile.h"
#include "fuzz/Promise.h"
#include "request/PackageReads.h"

namespace {

using namespace tavlo;
using cli::Session;
using fuzz::require;

Value orNull(const Text& text) { return text ? Value(*text) : Value(); }

Value packageOf(const host::SessionRecord& package) {
  ValueMap entries;
  for (const PackageTextRead& read : kPackageTextReads) entries.append(read.name, orNull((package.*read.read)()));
  entries.append("limitAdTrackingEnabled", package.limitAdTrackingEnabled());
  entries.append("resolution", package.resolution());
  entries.append("preRoll", package.preRoll());
  return Value::map(std::move(entries));
}

Value countersOf(const cli::UserCounters& counters) {
  return Value::map({{"getIsUserNew", counters.isUserNew},
                     {"getUniqueUserDayValue", counters.dayValue},
                     {"getUniqueUserDay", orNull(counters.day)},
                     {"getUniqueUserWeekValue", counters.weekValue},
                     {"getNumberOfWeek", counters.week},
                     {"getUniqueUserMonthValue", counters.monthValue},
                     {"getNumberOfMonth", counters.month}});
}

Value recordsOf(const Session& session) {
  if (!session.trackerRecords) return {};
  ValueList records;
  for (const host::TrackerEvent& record : *session.trackerRecords) {
    records.push_back(Value::map({{"networkID", record.networkID.value_or(Value())},
                                  {"event", record.event.value_or(Value())},
                                  {"count", record.count.value_or(Value())}}));
  }
  return Value::list(std::move(records));
}

Value identifiersOf(const Session& session) {
  ValueMap entries;
  for (const auto& [key, text] : session.identifiers) entries.append(key, text);
  return Value::map(std::move(entries));
}

Value documentOf(const Session& session) {
  return Value::map({{"package", packageOf(*session.package)},
                     {"uniqueUser", countersOf(session.counters)},
                     {"trackerRecords", recordsOf(session)},
                     {"identifiers", identifiersOf(session)}});
}

void checkFailure(std::string_view message, std::string_view document) {
  constexpr std::string_view kName = "s.json:";
  require(message.starts_with(kName), "a failure names the file");
  message.remove_prefix(kName.size());
  const auto digits = static_cast<std::size_t>(
      std::find_if_not(message.begin(), message.end(), [](unsigned char c) { return std::isdigit(c) != 0; }) -
      message.begin());
  require(digits > 0 && digits < 9, "a failure names a line");
  const std::size_t line = std::stoul(std::string(message.substr(0, digits)));
  const auto lines = static_cast<std::size_t>(std::count(document.begin(), document.end(), '\n')) + 1;
  require(line >= 1 && line <= lines, "the line is one of the file's");
  require(message.substr(digits).starts_with(": ") && message.size() > digits + 2, "a failure says what is wrong");
}

// What an object of the document gives is in the session.
void checkMembers(const cli::JsonNode& object, const Value& read) {
  for (const cli::JsonMember& member : object.members) {
    const Value* const value = read.ifMap()->find(member.key);
    if (member.value.kind == cli::JsonNode::Kind::null) continue;
    require(value && *value == member.value.scalar, "the session has what the file gives");
  }
}

void checkSections(const cli::JsonNode& document, const Value& read) {
  for (const cli::JsonMember& section : document.members) {
    const Value* const value = read.ifMap()->find(section.key);
    if (section.value.kind == cli::JsonNode::Kind::null || section.key == "about") continue;
    require(value != nullptr, "a section is one that there is");
    const ValueList* const records = value->ifList();
    if (!records) {
      checkMembers(section.value, *value);
      continue;
    }
    require(records->size() == section.value.items.size(), "each record is read");
    for (std::size_t i = 0; i < records->size(); ++i) checkMembers(section.value.items[i], (*records)[i]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view document = fuzz::textOf(data, size);
  std::optional<Session> session;
  try {
    session = cli::parseSession(document, "s.json");
  } catch (const cli::Failure& failure) {
    checkFailure(failure.what(), document);
    return 0;
  }
  require(document.find('\0') == std::string_view::npos, "the whole file is read");
  const Value whole = documentOf(*session);
  checkSections(cli::parseJson(document), whole);
  const std::string written = cli::toJson(whole);
  require(documentOf(cli::parseSession(written, "written.json")) == whole, "what was written is what was read");
  return 0;
}
