#include "cli/JsonReader.h"

#include <algorithm>

#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

using Kind = JsonNode::Kind;

std::string_view nameOf(Kind kind) {
  switch (kind) {
    case Kind::null: return "null";
    case Kind::boolean: return "a truth value";
    case Kind::integer: return "an integer";
    case Kind::real: return "a real number";
    case Kind::text: return "a text";
    case Kind::list: return "a list";
    case Kind::object: return "an object";
  }
  return {};
}

}  // namespace

JsonNode parseJsonOf(const std::string& file, std::string_view document) {
  try {
    return parseJson(document);
  } catch (const JsonError& error) {
    throw Failure(file + ":" + std::to_string(error.line()) + ": " + error.what());
  }
}

void JsonReader::fail(std::size_t line, const std::string& path, const std::string& what) const {
  throw Failure(file_ + ":" + std::to_string(line) + ": " + (path.empty() ? "" : withNulShown(path) + ": ") + what);
}

void JsonReader::failKind(const JsonNode& node, const std::string& path, const std::string& expected) const {
  fail(node.line, path, "expected " + expected + ", got " + std::string(nameOf(node.kind)));
}

void JsonReader::readObject(const JsonNode& node, const std::string& path, std::string_view members,
                            const TakeMember& take) const {
  if (node.kind != Kind::object) failKind(node, path, "an object");
  for (auto member = node.members.begin(); member != node.members.end(); ++member) {
    const std::string memberPath = (path.empty() ? "" : path + ".") + (member->key.empty() ? "\"\"" : member->key);
    const auto isTheSame = [&](const JsonMember& other) { return other.key == member->key; };
    if (const auto first = std::find_if(node.members.begin(), member, isTheSame); first != member) {
      fail(member->line, memberPath, "expected once, first given in line " + std::to_string(first->line));
    }
    if (!take(*member, memberPath)) {
      fail(member->line, memberPath, "unknown key, expected " + std::string(members));
    }
  }
}

Text JsonReader::textOf(const JsonNode& node, const std::string& path) const {
  if (node.kind == Kind::null) return std::nullopt;
  if (node.kind != Kind::text) failKind(node, path, "a text or null");
  return std::string(*node.scalar.ifText());
}

}  // namespace tavlo::cli
