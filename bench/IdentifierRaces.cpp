#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/Areas.h"
#include "bench/Outline.h"
#include "bench/peers/LibPlist.h"
#include "bench/peers/Peers.h"
#include "common/PropertyList.h"

namespace tavlo::bench {
namespace {

// What a host app keeps beside the identifiers: of each six settings two texts, an integer, a flag, a date, a list.
Value setting(std::size_t number) {
  switch (number % 6) {
    case 0: return "value " + std::to_string(number) + " of M\xC3\xBCller & co";
    case 1: return static_cast<std::uint32_t>(number) * 1000;
    case 2: return number % 4 == 0;
    case 3: return Date{7200.5 + static_cast<double>(number)};
    case 4: return Value::list({"clip one", "clip two", static_cast<std::uint32_t>(number)});
    default: return "7D4E0F2A-93B1-4C58-A6D2-" + std::to_string(100000000000 + number);
  }
}

std::string settingsFile(std::size_t keys) {
  ValueMap entries;
  for (std::size_t i = 0; i < keys; ++i) {
    entries.append("com.example.player.setting-" + std::to_string(i), setting(i));
  }
  return property_list::encode(Value::map(entries)).value();
}

// Both trees are made and destroyed in the time that is taken; only the check writes them out.
struct OurTree {
  property_list::Decoded list;
};
std::string answerOf(const OurTree& tree) { return tree.list.value ? outlineOf(*tree.list.value) : tree.list.error; }

void addSettingsParse(Races& races, std::size_t keys) {
  const auto file = std::make_shared<std::string>();
  Race& race = races.add("settings parse", std::to_string(keys) + " keys");
  race.size(keys).setUp([=, count = races.sized(keys)] { *file = settingsFile(count); }).ours([=] {
    return OurTree{property_list::decode(*file)};
  });
  if constexpr (peers::kLibPlist) {
    race.peer("libplist", [=] { return peers::plistFromBinary(*file); }).atMost(1.1, "libplist");
  }
}

}  // namespace

void addIdentifiers(Races& races) {
  for (const std::size_t keys : {20, 1000}) addSettingsParse(races, keys);
}

}  // namespace tavlo::bench
