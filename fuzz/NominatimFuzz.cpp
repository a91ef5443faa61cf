// Any answer of the geocoding service becomes absent or a text that is as harmless as the header says. Where it is JSON
// the outcome is, too, with the best name of the place as the only one, and coordinates that are none of the service's.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "cli/Json.h"
#include "common/Utf8.h"
#include "fuzz/Promise.h"
#include "platform/linux/NominatimAnswer.h"

namespace {

using namespace tavlo;
using cli::JsonMember;
using cli::JsonNode;
using fuzz::require;

std::optional<JsonNode> jsonOf(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) return std::nullopt;  // a mark that the other reader allows
  try {
    return cli::parseJson(text);
  } catch (const cli::JsonError&) {
    return std::nullopt;
  }
}

std::size_t depthOf(const JsonNode& node) {
  std::size_t deepest = 0;
  for (const JsonNode& item : node.items) deepest = std::max(deepest, depthOf(item));
  for (const JsonMember& member : node.members) deepest = std::max(deepest, depthOf(member.value));
  return node.kind == JsonNode::Kind::list || node.kind == JsonNode::Kind::object ? deepest + 1 : 0;
}

// The last member of the name, as the library takes it.
const JsonNode* memberOf(const JsonNode& node, std::string_view key) {
  const auto found = std::find_if(node.members.rbegin(), node.members.rend(),
                                  [&](const JsonMember& member) { return member.key == key; });
  return found == node.members.rend() ? nullptr : &found->value;
}

void checkPlace(const JsonNode& before, const JsonNode& after) {
  const JsonNode* best = nullptr;
  for (const std::string_view name : {"village", "town", "city"}) {
    if (const JsonNode* const named = memberOf(before, name)) best = named;
    if (name != "city") require(!memberOf(after, name), "no other name is left");
  }
  const JsonNode* const city = memberOf(after, "city");
  require((city == nullptr) == (best == nullptr), "the place has a name when the answer has one");
  require(!city || (city->kind == best->kind && city->scalar == best->scalar), "the name is the best one");
}

void checkMembers(const JsonNode& before, const JsonNode& after) {
  for (const std::string_view key : {"lat", "lon", "osm_id", "place_id"}) {
    const JsonNode* const member = memberOf(after, key);
    require(member && member->scalar == Value("0"), "coordinates and the like are harmless ones");
  }
  const JsonNode* const address = memberOf(before, "address");
  const JsonNode* const prepared = memberOf(after, "address");
  require((address == nullptr) == (prepared == nullptr), "the address stays");
  if (address && address->kind == JsonNode::Kind::object) checkPlace(*address, *prepared);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view answer = fuzz::textOf(data, size);
  const auto prepared = linux_platform::preparedNominatimAnswer(answer);
  const auto before = jsonOf(answer);
  const bool fits = before && before->kind == JsonNode::Kind::object && depthOf(*before) <= 32;
  require(!fits || prepared, "an object that is not too deep is fit");
  if (!prepared) return 0;

  require(isUtf8(answer) && isUtf8(*prepared), "what is fit is UTF-8");
  require(prepared->size() <= answer.size() + 256 + size, "nothing grows but by a little");
  if (!before) return 0;
  require(fits, "what is JSON and fit is an object that is not too deep");
  const auto after = jsonOf(*prepared);
  require(after && after->kind == JsonNode::Kind::object, "JSON stays JSON");
  checkMembers(*before, *after);
  return 0;
}
