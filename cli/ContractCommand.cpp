// contract: the tables of the requests, for people, for programs and for the documentation.
#include <array>
#include <string>
#include <type_traits>
#include <variant>

#include "cli/Commands.h"
#include "cli/ContractText.h"
#include "cli/Json.h"

namespace tavlo::cli {
namespace {

std::string_view formName(Form form) {
  switch (form) {
    case Form::joined: return "joined";
    case Form::appended: return "appended";
    case Form::map: return "map";
  }
  return {};
}

std::string contractTable(const Contract& contract, const TableLook& look) {
  std::vector<std::vector<Cell>> rows{headings({"#", "key", "source", "kind", "rendering"})};
  for (const Pair& pair : contract.pairs) {
    rows.push_back({{.text = std::to_string(rows.size())},
                    {.text = std::string(pair.key)},
                    {.text = sourceText(pair.source)},
                    {.text = std::string(kindName(pair.source))},
                    {.text = std::string(renderingName(pair.rendering))}});
  }
  return std::string(contract.title) + ": " + std::string(contract.operation) + ", " + formText(contract) + "\n\n" +
         table(rows, look);
}

Value textOrNull(std::string_view text) { return text.empty() ? Value() : Value(text); }

Value contractValue(const Contract& contract) {
  ValueList pairs;
  for (const Pair& pair : contract.pairs) {
    const auto* const constant = std::get_if<Constant>(&pair.source);
    pairs.push_back(Value::map({{"number", pairs.size() + 1},
                                {"key", pair.key},
                                {"source", textOrNull(sourceName(pair.source))},
                                {"kind", kindName(pair.source)},
                                {"rendering", renderingName(pair.rendering)},
                                {"constant", constant ? Value(constant->text) : Value()}}));
  }
  return Value::map({{"name", contract.name},
                     {"title", contract.title},
                     {"operation", contract.operation},
                     {"form", formName(contract.form)},
                     {"pairs", Value::list(std::move(pairs))}});
}

std::string contractsTable(const Contract* only, const TableLook& look) {
  if (only) return contractTable(*only, look);
  std::string text;
  for (const Contract& contract : kContracts) {
    if (!text.empty()) text += '\n';
    text += contractTable(contract, look);
  }
  return text;
}

Value contractsValue(const Contract* only) {
  if (only) return contractValue(*only);
  ValueList contracts;
  for (const Contract& contract : kContracts) contracts.push_back(contractValue(contract));
  return Value::list(std::move(contracts));
}

}  // namespace

std::string formText(const Contract& contract) {
  const std::string count = std::to_string(contract.pairs.size());
  switch (contract.form) {
    case Form::joined: return count + " pairs joined by \"&\"";
    case Form::appended: return count + " pairs, each led by \"&\"";
    case Form::map: return "a map of " + count + " keys";
  }
  return {};
}

std::string sourceText(const Source& source) {
  if (const auto* constant = std::get_if<Constant>(&source)) return quoted(constant->text);
  return std::string(sourceName(source));
}

std::string_view sourceName(const Source& source) {
  return std::visit(
      [](const auto& from) -> std::string_view {
        using From = std::decay_t<decltype(from)>;
        if constexpr (std::is_same_v<From, Constant>) {
          return "";
        } else if constexpr (std::is_same_v<From, PackageText>) {
          return readOf(from).name;
        } else {
          return from.name;
        }
      },
      source);
}

std::string_view kindName(const Source& source) {
  // In the order of Source.
  constexpr auto kNames = std::to_array<std::string_view>(
      {"constant", "text", "truth value", "integer", "text", "list", "text", "integer"});
  static_assert(kNames.size() == std::variant_size_v<Source>);
  return kNames[source.index()];
}

std::string_view renderingName(Rendering rendering) {
  switch (rendering) {
    case Rendering::encoded: return "encoded";
    case Rendering::asIs: return "as is";
    case Rendering::constant: return "constant";
    case Rendering::boolean: return "boolean";
    case Rendering::integer: return "integer";
    case Rendering::list: return "list";
  }
  return {};
}

void execute(const PrintContract& command, const Run& run) {
  switch (command.format.value_or(run.globals.json ? ContractFormat::json : ContractFormat::table)) {
    case ContractFormat::table: run.output.answer(contractsTable(command.contract, run.output.tableLook())); break;
    case ContractFormat::json: run.output.answerLine(toJson(contractsValue(command.contract))); break;
    case ContractFormat::markdown:
      run.output.answer(command.contract ? contractMarkdown(*command.contract) : allContractsMarkdown());
      break;
  }
}

}  // namespace tavlo::cli
