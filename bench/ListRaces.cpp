#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "bench/Areas.h"
#include "bench/Outline.h"
#include "bench/Records.h"
#include "bench/peers/LibPlist.h"
#include "bench/peers/Peers.h"
#include "cache/KeyedArchive.h"

namespace tavlo::bench {
namespace {

constexpr std::array<std::size_t, 3> kSizes{100, 1'000, 10'000};

struct DecodedList {
  std::optional<Value> value;
};

struct EncodedList {
  std::string bytes;
};

// A date is what the archive has for it, its seconds.
std::string answerOf(const DecodedList& list) {
  ValueList plain;
  for (const Value& record : *list.value->ifList()) {
    ValueMap fields;
    for (const auto& [name, value] : *record.ifMap()) {
      fields.append(name, value.ifDate() ? Value(value.ifDate()->seconds) : value);
    }
    plain.push_back(Value::map(std::move(fields)));
  }
  return outlineOf(Value::list(std::move(plain)));
}

// The order of objects is each writer's own.
std::string answerOf(const EncodedList& list) { return answerOf(DecodedList{keyed_archive::decode(list.bytes)}); }

std::string inputOf(std::size_t size) { return std::to_string(size) + " records"; }

void addDecoding(Races& races, std::size_t size) {
  const auto archive = std::make_shared<std::string>();
  Race& race = races.add("list decode", inputOf(size)).size(size);
  race.setUp([=, count = races.sized(size)] { *archive = keyed_archive::encode(Value::list(records(count))); });
  race.ours([=] { return DecodedList{keyed_archive::decode(*archive)}; });
  if constexpr (peers::kLibPlist) {
    race.peer("libplist", [=] { return peers::plistRecords(*archive); }).atMost(0.35, "libplist");
  }
  race.limit("a copy", [=] { return std::string(*archive); });
}

void addEncoding(Races& races, std::size_t size) {
  const auto list = std::make_shared<Value>();
  Race& race = races.add("list encode", inputOf(size)).size(size);
  race.setUp([=, count = races.sized(size)] { *list = Value::list(records(count)); });
  race.ours([=] { return EncodedList{keyed_archive::encode(*list)}; });
  if constexpr (peers::kLibPlist) {
    race.peer("libplist", [=] { return EncodedList{peers::plistArchive(*list)}; }).atMost(1.0, "libplist");
  }
}

}  // namespace

void addLists(Races& races) {
  for (const std::size_t size : kSizes) addDecoding(races, size);
  for (const std::size_t size : kSizes) addEncoding(races, size);
}

}  // namespace tavlo::bench
