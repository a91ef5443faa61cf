#include "request/Renderer.h"

#include "common/Format.h"
#include "common/Slot.h"
#include "request/TextWriter.h"

namespace tavlo {
namespace {

// Who is asked for values. The unique-user handler is the one that is installed when a value is read.
struct Sources {
  const TavloPackage* package = nullptr;
  SlotReader<TavloUniqueUserHandler> users{processSlot<TavloUniqueUserHandler>()};
};

// Writes a row's value to `out`, reading its source once.
class ValueWriter {
 public:
  // `raw`, where wanted, gets the text that was read.
  ValueWriter(TextWriter& out, Rendering rendering, Sources& sources, Text* raw = nullptr)
      : out_(out), rendering_(rendering), sources_(sources), raw_(raw) {}

  void operator()(const Constant& source) const { out_.append(source.text); }
  void operator()(PackageText source) const { appendRead(read(sources_.package, readOf(source).read)); }
  void operator()(const PackageFlag& source) const { out_.append(read(sources_.package, source.read) ? '1' : '0'); }
  void operator()(const PackageInteger& source) const { out_.appendInteger(read(sources_.package, source.read)); }
  void operator()(const TextOperation& source) const { appendRead(source.call()); }
  void operator()(const UserText& source) const { appendRead(read(sources_.users.read(), source.read)); }
  void operator()(const UserInteger& source) const { out_.appendInteger(read(sources_.users.read(), source.read)); }
  void operator()(const ListOperation&) const {}  // no text: renderMap() takes a list whole

 private:
  template <class Source, class Result>
  static Result read(const Source* source, Result (Source::*operation)() const) {
    return source ? (source->*operation)() : Result{};
  }

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
  Sources& sources_;
  Text* raw_;
};

void writeValue(TextWriter& out, const Pair& row, Sources& sources) {
  std::visit(ValueWriter(out, row.rendering, sources), row.source);
}

}  // namespace

std::string renderQuery(const Contract& contract, const TavloPackage* package) {
  Sources sources{.package = package};
  TextWriter query;
  bool isLed = contract.form == Form::appended;
  for (const Pair& row : contract.pairs) {
    if (isLed) {
      query.append(row.queryKey.text, row.queryKey.length);
    } else {
      query.append(row.key);
      query.append('=');
    }
    isLed = true;
    writeValue(query, row, sources);
  }
  return query.take();
}

ValueList keysOf(const Contract& contract) {
  ValueList keys;
  keys.reserve(contract.pairs.size());
  for (const Pair& row : contract.pairs) keys.push_back(Value::literal(row.key));
  return keys;
}

ValueMap renderMap(const Contract& contract, const ValueList& keys, const TavloPackage* package) {
  ValueMap map;
  map.reserve(contract.pairs.size());
  Sources sources{.package = package};
  TextWriter text;
  for (std::size_t i = 0; i < contract.pairs.size(); ++i) {
    const Pair& row = contract.pairs[i];
    if (const auto* source = std::get_if<ListOperation>(&row.source)) {
      map.append(keys[i], source->call());
      continue;
    }
    writeValue(text, row, sources);
    map.append(keys[i], text.view());
    text.clear();
  }
  return map;
}

RenderedPair explain(const Pair& pair, const TavloPackage* package) {
  RenderedPair rendered;
  Sources sources{.package = package};
  TextWriter sent;
  const bool isText = std::holds_alternative<PackageText>(pair.source) ||
                      std::holds_alternative<TextOperation>(pair.source) ||
                      std::holds_alternative<UserText>(pair.source);
  std::visit(ValueWriter(sent, pair.rendering, sources, &rendered.raw), pair.source);
  rendered.sent = sent.take();
  if (!isText) rendered.raw = rendered.sent;
  return rendered;
}

}  // namespace tavlo
