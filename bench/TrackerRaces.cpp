#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/BenchHost.h"
#include "bench/peers/Requests.h"

namespace tavlo::bench {
namespace {

using peers::GuardedRecord;
using peers::guardedRecord;

// A payload as peers hold it, and ours, compared by what is in them.
using PeerValue = std::variant<std::string, std::vector<std::map<std::string, std::string>>>;
struct OurMap {
  Value map;
};
struct SortedMap {
  std::map<std::string, PeerValue> entries;
};
struct PairList {
  std::vector<std::pair<std::string, PeerValue>> entries;
};

std::string answerOf(const SortedMap& map) {
  std::string answer;
  for (const auto& [key, value] : map.entries) {
    const auto* text = std::get_if<std::string>(&value);
    answer += key + '=' + (text ? *text : "a list") + '\n';
  }
  return answer;
}
[[maybe_unused]] std::string answerOf(const PairList& list) {
  return answerOf(SortedMap{{list.entries.begin(), list.entries.end()}});
}
std::string answerOf(const OurMap& map) {
  SortedMap sorted;
  for (const auto& [key, value] : *map.map.ifMap()) {
    const std::string name(*key.ifText());
    sorted.entries[name] = PeerValue(std::string(value.ifText().value_or("")));
    if (value.ifList()) sorted.entries[name] = PeerValue(std::in_place_index<1>);
  }
  return answerOf(sorted);
}

template <class Write>
void walkPayload(const GuardedRecord& record, Write write) {
  peers::walk(kTrackerContract, record, [&](std::string_view key, auto&& value) {
    using Kind = std::decay_t<decltype(value)>;
    if constexpr (peers::isList<Kind>) {
      write(std::string(key), PeerValue(std::in_place_index<1>));
    } else if constexpr (std::is_integral_v<Kind>) {
      write(std::string(key), PeerValue(std::to_string(value)));
    } else {
      write(std::string(key), PeerValue(std::string(std::forward<decltype(value)>(value))));
    }
  });
}

void addPayload(Races& races) {
  Race& race = races.add("tracker payload", "no records").setUp([] {
    installHost();
    guardedRecord().copyFrom(*TavloPackage::sharedInstance());
  });
  race.ours([] { return OurMap{TavloUtility::trackerNetworkSessionData()}; });
  if constexpr (peers::kBoostUrl) {
    race.peer("Boost.URL and std::map", [] {
      SortedMap map;
      walkPayload(guardedRecord(),
                  [&](std::string key, PeerValue value) { map.entries.emplace(std::move(key), std::move(value)); });
      return map;
    });
    race.peer("Boost.URL and a vector of pairs", [] {
      PairList list;
      list.entries.reserve(kTrackerContract.pairs.size());
      walkPayload(guardedRecord(), [&](std::string key, PeerValue value) {
        list.entries.emplace_back(std::move(key), std::move(value));
      });
      return list;
    });
    race.atMost(0.5);
  }
}

// The list of the kept records from values that were read before.
struct ReadRecord {
  Value networkID, event, count;
};

struct Kept {
  Value records;
};
std::string answerOf(const Kept&) { return {}; }

Value copied(const std::vector<ReadRecord>& records) {
  ValueList kept;
  kept.reserve(records.size());
  for (const auto& [networkID, event, count] : records) {
    ValueMap map;
    map.reserve(3);
    map.append("network_id", networkID);
    map.append("event", event);
    map.append("count", count);
    kept.push_back(Value::map(std::move(map)));
  }
  return Value::list(std::move(kept));
}

void addRecords(Races& races) {
  for (const auto& [name, wanted] :
       {std::pair{"100 records", 100U}, {"10,000 records", 10'000U}, {"1,000,000 records", 1'000'000U}}) {
    const std::size_t count = races.sized(wanted);
    const auto records = std::make_shared<std::vector<ReadRecord>>();
    races.add("tracker payload with records", name)
        .size(count)
        .setUp([=] {
          installHost(count);
          for (std::size_t i = 0; i < count; ++i) {
            records->push_back({.networkID = "network-" + std::to_string(i), .event = "impression", .count = 3});
          }
        })
        .ours([] { return OurMap{TavloUtility::trackerNetworkSessionData()}; })
        .limit("a copy of the kept records", [=] { return Kept{copied(*records)}; })
        .atMost(2, "a copy of the kept records");
  }
}

}  // namespace

void addTracker(Races& races) {
  addPayload(races);
  addRecords(races);
}

}  // namespace tavlo::bench
