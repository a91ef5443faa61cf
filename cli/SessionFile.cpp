#include "cli/SessionFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

#include "cli/Input.h"
#include "cli/JsonReader.h"
#include "request/PackageReads.h"

namespace tavlo::cli {
namespace {

using Kind = JsonNode::Kind;

// Reads one document into one session. A path names a value: "package.age", "trackerRecords[2].count".
class Reader : private JsonReader {
 public:
  using JsonReader::JsonReader;

  [[nodiscard]] Session read(const JsonNode& document);

 private:
  void readPackage(const JsonNode& node, const std::string& path, Session& session);
  void readCounters(const JsonNode& node, const std::string& path, UserCounters& counters);
  void readRecords(const JsonNode& node, const std::string& path, Session& session);
  void readIdentifiers(const JsonNode& node, const std::string& path, Session& session);

  [[nodiscard]] host::TrackerEvent recordOf(const JsonNode& node, const std::string& path);
  [[nodiscard]] bool truthOf(const JsonNode& node, const std::string& path) const;
  [[nodiscard]] std::int32_t integerOf(const JsonNode& node, const std::string& path) const;
  [[nodiscard]] std::optional<Value> textOrNumberOf(const JsonNode& node, const std::string& path) const;
};

Session Reader::read(const JsonNode& document) {
  Session session;
  const auto take = [&](const JsonMember& member, const std::string& path) {
    if (member.key == "about") return true;  // the file's comment, of any kind
    const bool absent = member.value.kind == Kind::null;
    if (member.key == "package") {
      if (!absent) readPackage(member.value, path, session);
    } else if (member.key == "uniqueUser") {
      if (!absent) readCounters(member.value, path, session.counters);
    } else if (member.key == "trackerRecords") {
      if (!absent) readRecords(member.value, path, session);
    } else if (member.key == "identifiers") {
      if (!absent) readIdentifiers(member.value, path, session);
    } else {
      return false;
    }
    return true;
  };
  readObject(document, "", "package, uniqueUser, trackerRecords, identifiers or about", take);
  return session;
}

void Reader::readPackage(const JsonNode& node, const std::string& path, Session& session) {
  host::SessionRecord& package = *session.package;
  const auto take = [&](const JsonMember& member, const std::string& memberPath) {
    if (const auto text = packageTextNamed(member.key)) {
      package.set(*text, textOf(member.value, memberPath));
    } else if (member.key == "limitAdTrackingEnabled") {
      package.setLimitAdTrackingEnabled(truthOf(member.value, memberPath));
    } else if (member.key == "resolution") {
      package.setResolution(integerOf(member.value, memberPath));
    } else if (member.key == "preRoll") {
      package.setPreRoll(integerOf(member.value, memberPath));
    } else {
      return false;
    }
    return true;
  };
  readObject(node, path, "a read operation of TavloPackage", take);
}

void Reader::readCounters(const JsonNode& node, const std::string& path, UserCounters& counters) {
  struct IntegerMember {
    std::string_view key;
    std::int32_t UserCounters::*place;
  };
  static constexpr auto kIntegers = std::to_array<IntegerMember>({
      {"getIsUserNew", &UserCounters::isUserNew},
      {"getUniqueUserDayValue", &UserCounters::dayValue},
      {"getUniqueUserWeekValue", &UserCounters::weekValue},
      {"getNumberOfWeek", &UserCounters::week},
      {"getUniqueUserMonthValue", &UserCounters::monthValue},
      {"getNumberOfMonth", &UserCounters::month},
  });
  const auto take = [&](const JsonMember& member, const std::string& memberPath) {
    if (member.key == "getUniqueUserDay") {
      counters.day = textOf(member.value, memberPath);
      return true;
    }
    const auto isNamed = [&](const IntegerMember& integer) { return integer.key == member.key; };
    const auto* const integer = std::find_if(kIntegers.begin(), kIntegers.end(), isNamed);
    if (integer == kIntegers.end()) return false;
    counters.*integer->place = integerOf(member.value, memberPath);
    return true;
  };
  readObject(node, path, "an operation of TavloUniqueUserHandler", take);
}

void Reader::readRecords(const JsonNode& node, const std::string& path, Session& session) {
  if (node.kind != Kind::list) failKind(node, path, "a list of records");
  auto& records = session.trackerRecords.emplace();
  for (const JsonNode& item : node.items) {
    records.push_back(recordOf(item, path + "[" + std::to_string(records.size()) + "]"));
  }
}

host::TrackerEvent Reader::recordOf(const JsonNode& node, const std::string& path) {
  host::TrackerEvent record;
  const auto take = [&](const JsonMember& member, const std::string& memberPath) {
    std::optional<Value>* const place = member.key == "networkID" ? &record.networkID
                                        : member.key == "event"   ? &record.event
                                        : member.key == "count"   ? &record.count
                                                                  : nullptr;
    if (place) *place = textOrNumberOf(member.value, memberPath);
    return place != nullptr;
  };
  readObject(node, path, "networkID, event or count", take);
  return record;
}

void Reader::readIdentifiers(const JsonNode& node, const std::string& path, Session& session) {
  const auto take = [&](const JsonMember& member, const std::string& memberPath) {
    if (member.key != "ApplicationId" && member.key != "OptionalId" && member.key != "SecurityKey") return false;
    if (auto text = textOf(member.value, memberPath)) session.identifiers.emplace(member.key, *std::move(text));
    return true;
  };
  readObject(node, path, "ApplicationId, OptionalId or SecurityKey", take);
}

bool Reader::truthOf(const JsonNode& node, const std::string& path) const {
  if (node.kind == Kind::null) return false;
  if (node.kind != Kind::boolean) failKind(node, path, "true, false or null");
  return *node.scalar.ifBoolean();
}

std::int32_t Reader::integerOf(const JsonNode& node, const std::string& path) const {
  if (node.kind == Kind::null) return 0;
  if (node.kind != Kind::integer) failKind(node, path, "an integer or null");
  const Integer& integer = *node.scalar.ifInteger();
  using Limits = std::numeric_limits<std::int32_t>;
  if (integer < Integer::of(Limits::min()) || integer > Integer::of(Limits::max())) {
    fail(node.line, path, "expected an integer from -2147483648 to 2147483647, got " + integer.decimal());
  }
  return static_cast<std::int32_t>(static_cast<std::int64_t>(integer.low));
}

std::optional<Value> Reader::textOrNumberOf(const JsonNode& node, const std::string& path) const {
  if (node.kind == Kind::null) return std::nullopt;
  if (node.kind != Kind::text && node.kind != Kind::integer && node.kind != Kind::real) {
    failKind(node, path, "a text, a number or null");
  }
  return node.scalar;
}

}  // namespace

Session parseSession(std::string_view document, const std::string& name) {
  return Reader(name).read(parseJsonOf(name, document));
}

Session readSessionFile(const std::string& path) {
  return parseSession(readInput(path, kLongestSessionFile), inputName(path));
}

}  // namespace tavlo::cli
