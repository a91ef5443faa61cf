#include "request/Renderer.h"

#include "common/Format.h"
#include "request/TextWriter.h"

namespace tavlo {
namespace {

// Writes a row's value to `out`, reading its source once.
class ValueWriter {
 public:
  // `raw`, where wanted, gets the text that was read.
  ValueWriter(TextWriter& out, Rendering rendering, const TavloPackage* package, Text* raw = nullptr)
      : out_(out), rendering_(rendering), package_(package), raw_(raw) {}

  void operator()(const Constant& source) const { out_.append(source.text); }
  void operator()(PackageText source) const {
    appendRead(package_ ? (package_->*readOf(source).read)() : std::nullopt);
  }
  void operator()(const PackageFlag& source) const { out_.append(package_ && (package_->*source.read)() ? '1' : '0'); }
  void operator()(const PackageInteger& source) const { out_.appendInteger(package_ ? (package_->*source.read)() : 0); }
  void operator()(const TextOperation& source) const { appendRead(source.call()); }
  void operator()(const IntegerOperation& source) const { out_.appendInteger(source.call()); }
  void operator()(const ListOperation&) const {}  // no text: renderMap() takes a list whole

 private:
  void appendRead(const Text& text) const {
    if (raw_) *raw_ = text;
    if (!text) {
      out_.append(kAbsent);
    } else if (rendering_ == Rendering::encoded) {
      out_.appendUrlEncoded(*text);
    } else {
      out_.append(*text);
    }
  }

  TextWriter& out_;
  Rendering rendering_;
  const TavloPackage* package_;
  Text* raw_;
};

void writeValue(TextWriter& out, const Pair& row, const TavloPackage* package) {
  std::visit(ValueWriter(out, row.rendering, package), row.source);
}

}  // namespace

std::string renderQuery(const Contract& contract, const TavloPackage* package) {
  TextWriter query;
  for (const Pair& row : contract.pairs) {
    if (contract.form == Form::appended || !query.empty()) query.append('&');
    query.append(row.key);
    query.append('=');
    writeValue(query, row, package);
  }
  return query.take();
}

ValueList keysOf(const Contract& contract) {
  ValueList keys;
  keys.reserve(contract.pairs.size());
  for (const Pair& row : contract.pairs) keys.emplace_back(row.key);
  return keys;
}

ValueMap renderMap(const Contract& contract, const ValueList& keys, const TavloPackage* package) {
  ValueMap map;
  map.reserve(contract.pairs.size());
  TextWriter text;
  for (std::size_t i = 0; i < contract.pairs.size(); ++i) {
    const Pair& row = contract.pairs[i];
    if (const auto* source = std::get_if<ListOperation>(&row.source)) {
      map.append(keys[i], source->call());
      continue;
    }
    writeValue(text, row, package);
    map.append(keys[i], text.take());
  }
  return map;
}

RenderedPair explain(const Pair& pair, const TavloPackage* package) {
  RenderedPair rendered;
  TextWriter sent;
  const bool isText =
      std::holds_alternative<PackageText>(pair.source) || std::holds_alternative<TextOperation>(pair.source);
  std::visit(ValueWriter(sent, pair.rendering, package, &rendered.raw), pair.source);
  rendered.sent = sent.take();
  if (!isText) rendered.raw = rendered.sent;
  return rendered;
}

}  // namespace tavlo
