#include "bench/Outline.h"

#include "common/Format.h"

namespace tavlo::bench {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

void append(Outline& outline, const Value& value);

void appendList(Outline& outline, const ValueList& items) {
  outline.open('[');
  for (const Value& item : items) append(outline, item);
  outline.close(']');
}

void appendMap(Outline& outline, const ValueMap& map) {
  outline.open('{');
  for (const auto& [key, value] : map) {
    append(outline, key);
    append(outline, value);
  }
  outline.close('}');
}

void append(Outline& outline, const Value& value) {
  switch (value.kind()) {
    case Value::Kind::boolean: return outline.boolean(*value.ifBoolean());
    case Value::Kind::integer: return outline.integer(value.ifInteger()->low);
    case Value::Kind::real: return outline.real(value.ifReal()->value);
    case Value::Kind::date: return outline.date(value.ifDate()->seconds);
    case Value::Kind::uid: return outline.uid(value.ifUid()->index);
    case Value::Kind::text: return outline.text(*value.ifText());
    case Value::Kind::data: return outline.data(*value.ifData());
    case Value::Kind::list: return appendList(outline, *value.ifList());
    case Value::Kind::map: return appendMap(outline, *value.ifMap());
    default: return outline.other();
  }
}

}  // namespace

void Outline::open(char bracket) { add({&bracket, 1}); }
void Outline::close(char bracket) { line_ += bracket; }
void Outline::text(std::string_view text) { add('"' + std::string(text) + '"'); }
void Outline::boolean(bool value) { add(value ? "true" : "false"); }
void Outline::integer(std::uint64_t value) { add(std::to_string(value)); }
void Outline::real(double value) { add(textForm(Value(value)) + 'f'); }
void Outline::date(double secondsSince2001) { add('@' + textForm(Value(secondsSince2001))); }
void Outline::uid(std::uint64_t index) { add('#' + std::to_string(index)); }
void Outline::other() { add("?"); }

void Outline::data(std::string_view bytes) {
  std::string word = "<";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    word += {kDigits[byte >> 4U], kDigits[byte & 15U]};
  }
  add(word + '>');
}

void Outline::add(std::string_view word) {
  if (!line_.empty() && !line_.ends_with('[') && !line_.ends_with('{')) line_ += ' ';
  line_ += word;
}

std::string outlineOf(const Value& value) {
  Outline outline;
  append(outline, value);
  return outline.line();
}

}  // namespace tavlo::bench
