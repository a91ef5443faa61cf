// A position is kept in a session file of any bytes: what is no session file stays as it was, and of one that is, only
// the three texts of the position change.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/Errors.h"
#include "cli/Json.h"
#include "cli/SessionFile.h"
#include "cli/SessionFileUpdate.h"
#include "fuzz/Promise.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace tavlo;
using cli::JsonMember;
using cli::JsonNode;
using fuzz::require;

using Entry = std::pair<const char*, Text>;
const std::array<Entry, 3> kEntries = {{{"getLatitude", "-33.868800"},
                                        {"getLongitude", std::nullopt},
                                        {"getUserAddress", "{\"city\":\"S\\u00e3o \xE2\x80\xA8\"}"}}};
const cli::KeptPosition kPosition = {
    .latitude = kEntries[0].second, .longitude = kEntries[1].second, .address = kEntries[2].second};

bool isEntry(const JsonMember& member) {
  return std::any_of(kEntries.begin(), kEntries.end(), [&](const Entry& entry) { return member.key == entry.first; });
}

bool isPackage(const JsonMember& member) { return member.key == "package"; }

// In their order, whatever their lines are.
bool areSame(const JsonNode& one, const JsonNode& other) {
  const auto sameMember = [](const JsonMember& a, const JsonMember& b) {
    return a.key == b.key && areSame(a.value, b.value);
  };
  return one.kind == other.kind && one.scalar == other.scalar &&
         std::equal(one.items.begin(), one.items.end(), other.items.begin(), other.items.end(), areSame) &&
         std::equal(one.members.begin(), one.members.end(), other.members.begin(), other.members.end(), sameMember);
}

// Takes the members that are so out of an object.
template <class Predicate>
std::vector<JsonMember> taken(JsonNode& object, Predicate isTaken) {
  const auto at = std::stable_partition(object.members.begin(), object.members.end(), std::not_fn(isTaken));
  std::vector<JsonMember> out(std::make_move_iterator(at), std::make_move_iterator(object.members.end()));
  object.members.erase(at, object.members.end());
  return out;
}

void checkPosition(const std::vector<JsonMember>& members) {
  require(members.size() == kEntries.size(), "the package has each text of the position once");
  for (const auto& [key, text] : kEntries) {
    const auto named = [name = key](const JsonMember& member) { return member.key == name; };
    const auto found = std::find_if(members.begin(), members.end(), named);
    require(found != members.end(), "the package has each text of the position");
    require(found->value.scalar == (text ? Value(*text) : Value()), "each text is what was given");
  }
}

void checkUpdate(const std::string& before, const std::string& after) {
  JsonNode was = cli::parseJson(before);
  JsonNode is = cli::parseJson(after);
  std::vector<JsonMember> oldPackage = taken(was, isPackage);
  std::vector<JsonMember> newPackage = taken(is, isPackage);
  require(newPackage.size() == 1, "there is one package");
  checkPosition(taken(newPackage[0].value, isEntry));
  if (!oldPackage.empty()) {
    taken(oldPackage[0].value, isEntry);
    oldPackage[0].value.kind = JsonNode::Kind::object;  // where it was null
    require(areSame(oldPackage[0].value, newPackage[0].value), "all else in the package stays");
  }
  require(areSame(was, is), "all outside the package stays");
}

bool isSession(const std::string& bytes) {
  try {
    static_cast<void>(cli::parseSession(bytes, "s.json"));
  } catch (const cli::Failure&) {
    return false;
  }
  return true;
}

// The message, when it was refused.
std::optional<std::string> keep(const std::string& path) {
  try {
    cli::keepInSessionFile(path, kPosition);
  } catch (const cli::Failure& failure) {
    return failure.what();
  }
  return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const test::TemporaryFolder folder;
  const std::string bytes(fuzz::textOf(data, size));
  const std::filesystem::path file = folder / "s.json";
  test::writeFile(file, bytes);

  const auto refusal = keep(file.string());

  const std::string kept = test::readFile(file);
  require(std::distance(std::filesystem::directory_iterator(folder.path()), {}) == 1, "no temporary file stays");
  require(refusal.has_value() != isSession(bytes), "what is a session file is updated, and nothing else is");
  if (refusal) {
    require(refusal->starts_with(file.string() + ":"), "a refusal names the file");
    require(kept == bytes, "what is refused stays as it was");
    return 0;
  }
  checkUpdate(bytes, kept);
  struct stat status {};
  require(::stat(file.c_str(), &status) == 0 && (status.st_mode & 0777U) == 0600U, "it is its owner's alone");
  require(!keep(file.string()) && test::readFile(file) == kept, "kept again, the position changes nothing");
  return 0;
}
