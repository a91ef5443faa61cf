// docs/wire-contract.md, made from the tables of the requests.
#include <set>
#include <string>
#include <vector>

#include "cli/ContractText.h"
#include "cli/PersonalData.h"

namespace tavlo::cli {
namespace {

std::string code(std::string_view text) { return std::string(1, '`').append(text).append(1, '`'); }

void appendListed(std::string& list, std::string_view separator, std::string_view item) {
  if (!list.empty()) list.append(separator);
  list.append(item);
}

// The other pairs of a contract that carry what this pair carries: "`device_id`, `os_id`", each with its rendering
// where that is another one.
std::string pairsOfSameSource(const Contract& contract, const Pair& pair) {
  std::string keys;
  for (const Pair& other : contract.pairs) {
    if (&other == &pair || sourceText(other.source) != sourceText(pair.source)) continue;
    appendListed(keys, ", ", code(other.key));
    if (other.rendering != pair.rendering) keys.append(1, ' ').append(renderingName(other.rendering));
  }
  return keys;
}

// "in-app `device_id`, `os_id`; tracker `device_id` encoded"
std::string alsoSent(const Pair& pair) {
  std::string places;
  for (const Contract& contract : kContracts) {
    const std::string keys = pairsOfSameSource(contract, pair);
    if (!keys.empty()) appendListed(places, "; ", std::string(contract.name).append(1, ' ').append(keys));
  }
  return places;
}

void appendRow(std::string& page, const std::vector<std::string>& cells) {
  page += '|';
  for (const std::string& cell : cells) {
    if (!cell.empty()) page.append(1, ' ').append(cell);
    page += " |";
  }
  page += '\n';
}

std::string kindsMarkdown() {
  std::string text = "\n## Personal data\n\n| Kind | | Keys |\n|---|---|---|\n";
  for (const PersonalData& data : kPersonalData) {
    std::set<std::string_view> seen;
    std::string keys;
    for (const Contract& contract : kContracts) {
      for (const Pair& pair : contract.pairs) {
        if (personalDataKind(pair.source) != data.kind || !seen.insert(pair.key).second) continue;
        appendListed(keys, ", ", code(pair.key));
      }
    }
    appendRow(text, {std::string(data.kind), std::string(data.explanation), keys});
  }
  return text;
}

}  // namespace

std::string contractMarkdown(const Contract& contract) {
  std::string text = "## " + std::string(contract.title) + "\n\n`" + std::string(contract.operation) +
                     "`: " + formText(contract) +
                     ".\n\n| # | Key | Source | Kind | Rendering | Personal data | Also sent in |\n"
                     "|---|---|---|---|---|---|---|\n";
  std::size_t number = 0;
  for (const Pair& pair : contract.pairs) {
    appendRow(text, {std::to_string(++number), code(pair.key), code(sourceText(pair.source)),
                     std::string(kindName(pair.source)), std::string(renderingName(pair.rendering)),
                     std::string(personalDataKind(pair.source)), alsoSent(pair)});
  }
  return text;
}

std::string allContractsMarkdown() {
  std::string text =
      "# The wire contracts\n\n"
      "What the four requests send, pair by pair and in order, as `tavlo contract --format markdown` prints it from\n"
      "the tables in request/Contracts.h. Encoded values go through `urlEncode`; an absent text is sent as `(null)`.\n"
      "*Also sent in* names the other pairs with the same source, and their rendering where it is another one.\n";
  for (const Contract& contract : kContracts) text.append("\n").append(contractMarkdown(contract));
  return text.append(kindsMarkdown());
}

}  // namespace tavlo::cli
