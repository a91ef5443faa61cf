#include "cli/SessionFileUpdate.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/Errors.h"
#include "cli/Input.h"
#include "cli/JsonReader.h"
#include "cli/SessionFile.h"
#include "platform/linux/AtomicFile.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;
using Kind = JsonNode::Kind;

JsonNode textNode(const Text& text) {
  JsonNode node;
  if (!text) return node;
  node.kind = Kind::text;
  node.scalar = *text;
  return node;
}

JsonNode objectNode() {
  JsonNode node;
  node.kind = Kind::object;
  return node;
}

JsonNode& memberOf(JsonNode& object, std::string_view key) {
  const auto isNamed = [key](const JsonMember& member) { return member.key == key; };
  const auto found = std::find_if(object.members.begin(), object.members.end(), isNamed);
  if (found != object.members.end()) return found->value;
  return object.members.emplace_back(JsonMember{.key = std::string(key), .line = 0, .value = JsonNode()}).value;
}

// Two blanks a level; the depth is bounded by what can be read.
void appendIndented(std::string& out, const JsonNode& node, const std::string& margin) {
  const bool isList = node.kind == Kind::list;
  if (!isList && node.kind != Kind::object) {
    out += toJson(node.scalar);
    return;
  }
  const std::string inner = margin + "  ";
  const std::size_t count = isList ? node.items.size() : node.members.size();
  out += isList ? '[' : '{';
  for (std::size_t i = 0; i < count; ++i) {
    out.append(i == 0 ? "\n" : ",\n").append(inner);
    if (!isList) out.append(toJson(node.members[i].key)).append(": ");
    appendIndented(out, isList ? node.items[i] : node.members[i].value, inner);
  }
  if (count > 0) out.append("\n").append(margin);
  out += isList ? ']' : '}';
}

// What is no file would block, or could not be replaced.
bool isThere(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (!fs::exists(status)) return false;  // what else is in the way shows when it is written
  if (fs::is_regular_file(status)) return true;
  throw Failure(file.string() + " is no regular file; give another one");
}

JsonNode readSession(const std::string& path) {
  const std::string document = readInput(path, kLongestSessionFile);
  static_cast<void>(parseSession(document, path));  // what is no session file is not written into
  return parseJsonOf(path, document);
}

}  // namespace

void keepInSessionFile(const std::string& path, const KeptPosition& position) {
  const bool isUpdated = isThere(path);
  JsonNode session = isUpdated ? readSession(path) : objectNode();
  JsonNode& package = memberOf(session, "package");
  if (package.kind == Kind::null) package = objectNode();
  memberOf(package, "getLatitude") = textNode(position.latitude);
  memberOf(package, "getLongitude") = textNode(position.longitude);
  memberOf(package, "getUserAddress") = textNode(position.address);
  std::string text;
  appendIndented(text, session, "");
  text += '\n';

  std::error_code error;
  const fs::path file = isUpdated ? fs::canonical(path, error) : fs::absolute(path, error);  // links are followed
  if (error || !linux_platform::replaceFile(linux_platform::Syscalls::real(), file.parent_path(), file, text)) {
    const std::string why = error ? error.message() : std::generic_category().message(errno);
    throw Failure("cannot write " + path + ": " + why + "; give a file in a folder that is there and can be written");
  }
}

}  // namespace tavlo::cli
