#include "request/Renderer.h"

#include "common/Format.h"
#include "request/UrlEncode.h"

namespace tavlo {
namespace {

// A filled-in session makes a query of one to two KiB; one allocation holds most.
constexpr std::size_t kQueryReserve = 2048;

// Appends a row's value to `out`, reading its source once.
class ValueWriter {
 public:
  // `raw`, where wanted, gets the text that was read.
  ValueWriter(std::string& out, Rendering rendering, const TavloPackage* package, Text* raw = nullptr)
      : out_(out), rendering_(rendering), package_(package), raw_(raw) {}

  void operator()(const Constant& source) const { out_ += source.text; }
  void operator()(PackageText source) const {
    appendRead(package_ ? (package_->*readOf(source).read)() : std::nullopt);
  }
  void operator()(const PackageFlag& source) const { appendBoolean(out_, package_ && (package_->*source.read)()); }
  void operator()(const PackageInteger& source) const {
    appendInteger(out_, package_ ? (package_->*source.read)() : 0);
  }
  void operator()(const TextOperation& source) const { appendRead(source.call()); }
  void operator()(const IntegerOperation& source) const { appendInteger(out_, source.call()); }
  void operator()(const ListOperation&) const {}  // no text: renderMap() takes a list whole

 private:
  void appendRead(const Text& text) const {
    if (raw_) *raw_ = text;
    if (text && rendering_ == Rendering::encoded) {
      appendUrlEncoded(out_, *text);
    } else {
      appendText(out_, text);
    }
  }

  std::string& out_;
  Rendering rendering_;
  const TavloPackage* package_;
  Text* raw_;
};

void appendValue(std::string& out, const Pair& row, const TavloPackage* package) {
  std::visit(ValueWriter(out, row.rendering, package), row.source);
}

}  // namespace

std::string renderQuery(const Contract& contract, const TavloPackage* package) {
  std::string query;
  query.reserve(kQueryReserve);
  for (const Pair& row : contract.pairs) {
    if (contract.form == Form::appended || !query.empty()) query += '&';
    query += row.key;
    query += '=';
    appendValue(query, row, package);
  }
  return query;
}

ValueMap renderMap(const Contract& contract, const TavloPackage* package) {
  ValueMap map;
  map.reserve(contract.pairs.size());
  for (const Pair& row : contract.pairs) {
    if (const auto* source = std::get_if<ListOperation>(&row.source)) {
      map.append(row.key, source->call());
      continue;
    }
    std::string text;
    appendValue(text, row, package);
    map.append(row.key, std::move(text));
  }
  return map;
}

RenderedPair explain(const Pair& pair, const TavloPackage* package) {
  RenderedPair rendered;
  const bool isText =
      std::holds_alternative<PackageText>(pair.source) || std::holds_alternative<TextOperation>(pair.source);
  std::visit(ValueWriter(rendered.sent, pair.rendering, package, &rendered.raw), pair.source);
  if (!isText) rendered.raw = rendered.sent;
  return rendered;
}

}  // namespace tavlo
