#include "cli/Requests.h"

#include <utility>

#include "TavloUtility.h"
#include "cli/ContractText.h"
#include "cli/Json.h"
#include "request/DataBaseHandler.h"
#include "request/Renderer.h"

namespace tavlo::cli {
namespace {

Text recordCount() {
  const auto handler = DataBaseHandler::sharedInastance();
  const auto records = handler ? handler->getNetworkTrackerDetails() : std::nullopt;
  if (!records) return std::nullopt;
  return std::to_string(records->size()) + (records->size() == 1 ? " record" : " records");
}

ExplainedPair explained(const Pair& pair, const TavloPackage* package) {
  if (const auto* list = std::get_if<ListOperation>(&pair.source)) {
    return {.pair = &pair, .raw = recordCount(), .sent = list->call()};
  }
  RenderedPair rendered = explain(pair, package);
  return {.pair = &pair, .raw = std::move(rendered.raw), .sent = rendered.sent};
}

bool isText(const Source& source) {
  return std::holds_alternative<PackageText>(source) || std::holds_alternative<TextOperation>(source) ||
         std::holds_alternative<UserText>(source) || std::holds_alternative<Constant>(source);
}

// Texts stand in quotation marks, so that nothing in one looks like something else.
Cell rawCell(const ExplainedPair& explained) {
  if (!explained.raw) return {.text = "absent", .style = Style::faint};
  if (explained.raw->empty()) return {.text = quoted(""), .style = Style::faint};
  return {.text = isText(explained.pair->source) ? quoted(*explained.raw) : displayed(*explained.raw)};
}

Cell sentCell(const Value& sent) {
  const auto text = sent.ifText();
  return {.text = text ? quoted(*text) : harmless(toJson(sent))};
}

Value textOrNull(const Text& text) { return text ? Value(*text) : Value(); }

}  // namespace

std::string requestText(const Contract& contract) {
  if (contract.name == kAdRequestContract.name) return TavloUtility::getAdditionalRequestingString();
  if (contract.name == kInAppContract.name) return TavloUtility::getInAppNotificationAdditionalRequest();
  if (contract.name == kUserContract.name) return TavloUtility::getUserInfoRequestString();
  return toJson(TavloUtility::trackerNetworkSessionData());
}

std::vector<ExplainedPair> explainRequest(const Contract& contract) {
  const auto package = TavloPackage::sharedInstance();
  std::vector<ExplainedPair> pairs;
  pairs.reserve(contract.pairs.size());
  for (const Pair& pair : contract.pairs) pairs.push_back(explained(pair, package.get()));
  return pairs;
}

std::string explanationTable(const std::vector<ExplainedPair>& pairs, const TableLook& look) {
  std::vector<std::vector<Cell>> rows{headings({"#", "key", "source", "raw", "rendering", "sent"})};
  for (const ExplainedPair& explained : pairs) {
    const Pair& pair = *explained.pair;
    rows.push_back({{.text = std::to_string(rows.size())},
                    {.text = std::string(pair.key)},
                    {.text = std::string(sourceName(pair.source))},
                    rawCell(explained),
                    {.text = std::string(renderingName(pair.rendering))},
                    sentCell(explained.sent)});
  }
  return table(rows, look);
}

Value explanationValue(const std::vector<ExplainedPair>& pairs) {
  ValueList list;
  for (const ExplainedPair& explained : pairs) {
    const std::string_view source = sourceName(explained.pair->source);
    list.push_back(Value::map({{"number", list.size() + 1},
                               {"key", explained.pair->key},
                               {"source", source.empty() ? Value() : Value(source)},
                               {"raw", textOrNull(explained.raw)},
                               {"rendering", renderingName(explained.pair->rendering)},
                               {"sent", explained.sent}}));
  }
  return Value::list(std::move(list));
}

}  // namespace tavlo::cli
