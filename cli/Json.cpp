#include "cli/Json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

#include "common/Format.h"

namespace tavlo::cli {
namespace {

using Json = nlohmann::json;

// Where the parser is: the line of the last byte that it read and that is no blank. Numbers end at the byte
// after them, which may already be the next line's.
struct Position {
  std::size_t line = 1;
  std::size_t tokenLine = 1;

  void pass(char c) {
    if (c == '\n') {
      ++line;
    } else if (c != ' ' && c != '\t' && c != '\r') {
      tokenLine = line;
    }
  }
};

// Walks the document for the parser, which reads each byte once and then steps over it.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(pointer at, Position& position) : at_(at), position_(&position) {}

  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    position_->pass(*at_++);
    return *this;
  }
  CountingIterator operator++(int) {
    const CountingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.at_ == b.at_; }

 private:
  pointer at_;
  Position* position_;
};

// Decimal digits, with or without "-", as an integer of up to 128 bits in two's complement.
std::optional<Integer> integerOf(std::string_view digits) {
  const bool negative = digits.starts_with('-');
  if (negative) digits.remove_prefix(1);
  constexpr std::uint64_t kLow32 = 0xFFFFFFFF;
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  for (const char c : digits) {
    // times ten and plus the digit, in pieces that leave room for the carry
    const std::uint64_t bottom = (low & kLow32) * 10 + static_cast<std::uint64_t>(c - '0');
    const std::uint64_t middle = (low >> 32U) * 10 + (bottom >> 32U);
    const std::uint64_t carry = middle >> 32U;
    if (high > (std::numeric_limits<std::uint64_t>::max() - carry) / 10) return std::nullopt;
    high = high * 10 + carry;
    low = (middle << 32U) | (bottom & kLow32);
  }
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  if (high > kSign || (high == kSign && (!negative || low != 0))) return std::nullopt;
  if (negative) {
    low = ~low + 1;
    high = ~high + (low == 0 ? 1 : 0);
  }
  return Integer{.high = static_cast<std::int64_t>(high), .low = low};
}

// The library's message without its own name, number and position.
std::string plainMessage(std::string_view message) {
  if (const auto end = message.find("] "); message.starts_with('[') && end != std::string_view::npos) {
    message.remove_prefix(end + 2);
  }
  constexpr std::string_view kPosition = "parse error at line ";
  if (const auto end = message.find(": "); message.starts_with(kPosition) && end != std::string_view::npos) {
    message.remove_prefix(end + 2);
  }
  return "broken JSON: " + std::string(message);
}

// Builds the tree from the parser's events, whose names are the library's.
class TreeBuilder {
 public:
  TreeBuilder(const Position& position, std::size_t deepest) : position_(position), deepest_(deepest) {}

  [[nodiscard]] JsonNode take() { return std::move(root_); }

  bool null() { return add(JsonNode::Kind::null, Value()); }
  bool boolean(bool value) { return add(JsonNode::Kind::boolean, value); }
  bool number_integer(std::int64_t value) { return add(JsonNode::Kind::integer, value); }
  bool number_unsigned(std::uint64_t value) { return add(JsonNode::Kind::integer, value); }
  bool number_float(double value, const std::string& written) {
    if (written.find_first_of(".eE") != std::string::npos) return add(JsonNode::Kind::real, value);
    const auto integer = integerOf(written);
    if (!integer) throw JsonError(position_.tokenLine, where() + "expected an integer of at most 128 bits");
    return add(JsonNode::Kind::integer, *integer);
  }
  bool string(const std::string& value) { return add(JsonNode::Kind::text, value); }
  bool binary(Json::binary_t& /*value*/) { return false; }  // not in a text

  bool start_object(std::size_t /*size*/) { return open(JsonNode::Kind::object); }
  bool key(std::string& key) {
    open_.back()->members.push_back({.key = std::move(key), .line = position_.tokenLine, .value = {}});
    return true;
  }
  bool end_object() { return close(); }
  bool start_array(std::size_t /*size*/) { return open(JsonNode::Kind::list); }
  bool end_array() { return close(); }

  bool parse_error(std::size_t /*byte*/, const std::string& /*token*/, const Json::exception& error) {
    constexpr int kNumberOverflow = 406;
    throw JsonError(position_.tokenLine, error.id == kNumberOverflow
                                             ? where() + "expected a number that 64 bits can hold as a real"
                                             : plainMessage(error.what()));
  }

 private:
  // The value that comes next, as errors name it, and ": ".
  [[nodiscard]] std::string where() const {
    std::string path;
    for (const JsonNode* const node : open_) {
      if (node->kind == JsonNode::Kind::list) {
        const bool innermost = node == open_.back();  // an outer list holds the one that is open already
        path += "[" + std::to_string(node->items.size() - (innermost ? 0 : 1)) + "]";
      } else {
        path += (path.empty() ? "" : ".") + node->members.back().key;
      }
    }
    return path.empty() ? path : withNulShown(path) + ": ";
  }

  JsonNode& place() {
    if (open_.empty()) return root_;
    JsonNode& parent = *open_.back();
    return parent.kind == JsonNode::Kind::list ? parent.items.emplace_back() : parent.members.back().value;
  }

  JsonNode& addNode(JsonNode::Kind kind) {
    JsonNode& node = place();
    node.kind = kind;
    node.line = position_.tokenLine;
    return node;
  }

  bool add(JsonNode::Kind kind, Value value) {
    addNode(kind).scalar = std::move(value);
    return true;
  }

  bool open(JsonNode::Kind kind) {
    if (open_.size() == deepest_) {
      throw JsonError(position_.tokenLine, "expected at most " + std::to_string(deepest_) + " levels of nesting");
    }
    open_.push_back(&addNode(kind));
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  const Position& position_;
  const std::size_t deepest_;
  JsonNode root_;
  std::vector<JsonNode*> open_;  // none moves: only the innermost one grows
};

std::string textToJson(const std::string& text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

void append(std::string& out, const Value& value);

void appendItems(std::string& out, const ValueList& items) {
  out += '[';
  for (const Value& item : items) {
    if (&item != items.data()) out += ',';
    append(out, item);
  }
  out += ']';
}

void appendEntries(std::string& out, const ValueMap& entries) {
  out += '{';
  bool first = true;
  for (const auto& [key, value] : entries) {
    if (!first) out += ',';
    first = false;
    out += textToJson(textForm(key));
    out += ':';
    append(out, value);
  }
  out += '}';
}

void append(std::string& out, const Value& value) {
  switch (value.kind()) {
    case Value::Kind::null: out += "null"; break;
    case Value::Kind::boolean: out += *value.ifBoolean() ? "true" : "false"; break;
    case Value::Kind::integer: out += value.ifInteger()->decimal(); break;
    case Value::Kind::real: out += Json(value.ifReal()->value).dump(); break;
    case Value::Kind::list: appendItems(out, *value.ifList()); break;
    case Value::Kind::set: appendItems(out, *value.ifSet()); break;
    case Value::Kind::map: appendEntries(out, *value.ifMap()); break;
    default: out += textToJson(textForm(value)); break;
  }
}

}  // namespace

std::string withNulShown(std::string_view text) {
  std::string shown;
  for (const char c : text) c == '\0' ? shown.append("\\u0000") : shown.append(1, c);
  return shown;
}

JsonNode parseJson(std::string_view document, std::size_t deepest) {
  Position position;
  TreeBuilder builder(position, deepest);
  Json::sax_parse(CountingIterator(document.data(), position),
                  CountingIterator(document.data() + document.size(), position), &builder);
  // The parser takes a NUL between two tokens for the end, and that is the one place where it lets one through.
  if (document.find('\0') != std::string_view::npos) {
    throw JsonError(position.tokenLine,
                    "broken JSON: a NUL byte where the text should end; save it as UTF-8 without one");
  }
  return builder.take();
}

std::string toJson(const Value& value) {
  std::string out;
  append(out, value);
  return out;
}

}  // namespace tavlo::cli
