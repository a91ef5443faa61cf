// Any text is the JSON form of an archive's contents or a JsonError with a line of it. What was read can be written in
// both layouts, and comes back the same.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "cli/ArchiveJson.h"
#include "cli/Json.h"
#include "fuzz/Promise.h"

namespace {

using namespace tavlo;
using fuzz::require;

// As a root, a reference to nothing at all and nothing at all are one.
std::optional<Value> rootOf(const std::optional<Value>& value) {
  return value && value->ifUid() && value->ifUid()->index == 0 ? std::nullopt : value;
}

void checkLayout(const std::optional<Value>& value, cli::ArchiveLayout layout) {
  std::string text;
  try {
    text = cli::toArchiveJson(value, layout);
  } catch (const cli::ArchiveTooLarge&) {
    return;  // what the indentation of a deep nesting makes of it
  }
  require(text.size() <= cli::kLongestArchiveJson, "a text is within the limit");
  require(cli::parseArchiveJson(text) == rootOf(value), "reading is the inverse of writing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view document = fuzz::textOf(data, size);
  std::optional<Value> value;
  try {
    value = cli::parseArchiveJson(document);
  } catch (const cli::JsonError& error) {
    const auto lines = static_cast<std::size_t>(std::count(document.begin(), document.end(), '\n')) + 1;
    require(error.line() >= 1 && error.line() <= lines, "an error names a line of the text");
    require(!std::string_view(error.what()).empty(), "an error says what is wrong");
    return 0;
  }
  require(document.find('\0') == std::string_view::npos, "the whole text is read");
  checkLayout(value, cli::ArchiveLayout::oneLine);
  checkLayout(value, cli::ArchiveLayout::indented);
  return 0;
}
