#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "cli/ArchiveJson.h"
#include "cli/ArchiveNumbers.h"
#include "cli/Json.h"

namespace tavlo::cli {
namespace {

using Kind = JsonNode::Kind;

// Room for all that an archive may nest, with three levels of JSON for one of a map of any keys.
constexpr std::size_t kDeepestArchiveJson = 2048;

class Reader {
 public:
  Value read(const JsonNode& node) {
    switch (node.kind) {
      case Kind::null: return Uid{};
      case Kind::list: return Value::list(itemsOf(node));
      case Kind::object: return objectOf(node);
      default: return node.scalar;
    }
  }

 private:
  using Step = std::variant<std::size_t, std::string_view>;

  // The members of an object that is a form: the one that names it, and the one that it may have besides.
  struct Form {
    const JsonNode& value;
    const JsonNode* other = nullptr;  // nullptr when it is not given
  };
  struct FormRow {
    std::string_view key;
    std::string_view otherKey;  // "" for none
    Value (Reader::*read)(const Form& form);
  };
  static const std::array<FormRow, 9> kForms;

  [[noreturn]] void fail(const JsonNode& node, const std::string& what) const { failAt(node.line, what); }
  [[noreturn]] void failAt(std::size_t line, const std::string& what) const {
    std::string path;
    for (const Step& step : path_) {
      if (const auto* const index = std::get_if<std::size_t>(&step)) {
        path.append("[").append(std::to_string(*index)).append("]");
      } else {
        path.append(path.empty() ? "" : ".").append(std::get<std::string_view>(step));
      }
    }
    throw JsonError(line, withNulShown(path.empty() ? what : path + ": " + what));
  }

  template <class ReadPart>
  auto within(Step step, ReadPart readPart) {
    path_.push_back(step);
    auto part = readPart();
    path_.pop_back();
    return part;
  }
  Value readWithin(Step step, const JsonNode& node) {
    return within(step, [&] { return read(node); });
  }

  // The member that a form has besides stands next to the one that names it.
  template <class ReadPart>
  auto nextTo(std::string_view key, ReadPart readPart) {
    const Step first = std::exchange(path_.back(), Step(key));
    auto part = readPart();
    path_.back() = first;
    return part;
  }

  ValueList itemsOf(const JsonNode& node) {
    if (node.kind != Kind::list) fail(node, "expected a list");
    ValueList items;
    items.reserve(node.items.size());
    for (std::size_t i = 0; i < node.items.size(); ++i) items.push_back(readWithin(i, node.items[i]));
    return items;
  }

  void requireDifferentKeys(const JsonNode& node) const {
    std::map<std::string_view, std::size_t> lines;
    for (const JsonMember& member : node.members) {
      const auto [first, isNew] = lines.try_emplace(member.key, member.line);
      if (!isNew) {
        failAt(member.line,
               "\"" + member.key + "\": expected once, first given in line " + std::to_string(first->second));
      }
    }
  }

  Value objectOf(const JsonNode& node) {
    requireDifferentKeys(node);
    if (memberOf(node, "$class")) return classObjectOf(node);
    for (const FormRow& row : kForms) {
      if (const JsonNode* const value = memberOf(node, row.key)) return formOf(row, node, *value);
    }
    return Value::map(entriesOf(node));
  }

  static const JsonNode* memberOf(const JsonNode& node, std::string_view key) {
    const auto found = std::find_if(node.members.begin(), node.members.end(),
                                    [&](const JsonMember& member) { return member.key == key; });
    return found == node.members.end() ? nullptr : &found->value;
  }

  Value formOf(const FormRow& row, const JsonNode& node, const JsonNode& value) {
    for (const JsonMember& member : node.members) {
      if (member.key == row.key || (!row.otherKey.empty() && member.key == row.otherKey)) continue;
      failAt(member.line, "\"" + member.key + "\": unexpected beside \"" + std::string(row.key) + "\"");
    }
    const JsonNode* const other = row.otherKey.empty() ? nullptr : memberOf(node, row.otherKey);
    const Form form{.value = value, .other = other};
    return within(row.key, [&] { return (this->*row.read)(form); });
  }

  ValueMap entriesOf(const JsonNode& node, std::string_view besides = "") {
    ValueMap entries;
    entries.reserve(node.members.size());
    for (const JsonMember& member : node.members) {
      if (!besides.empty() && member.key == besides) continue;
      if (member.key.starts_with('$')) {
        failAt(member.line,
               "\"" + member.key +
                   "\": expected a key without \"$\" in front, or one of $class, $fields (with it), $date, "
                   "$data, $map, $null, $real, $set, $text, $uid and $url");
      }
      entries.append(member.key, readWithin(std::string_view(member.key), member.value));
    }
    return entries;
  }

  ValueMap pairsOf(const JsonNode& node) {
    if (node.kind != Kind::list) fail(node, "expected a list of pairs");
    std::vector<ValueMap::Entry> entries;
    entries.reserve(node.items.size());
    for (std::size_t i = 0; i < node.items.size(); ++i) {
      entries.push_back(within(i, [&] {
        const JsonNode& pair = node.items[i];
        if (pair.kind != Kind::list || pair.items.size() != 2) fail(pair, "expected a list of a key and a value");
        Value key = readWithin(std::size_t{0}, pair.items[0]);
        return ValueMap::Entry(std::move(key), readWithin(std::size_t{1}, pair.items[1]));
      }));
    }
    ValueMap map(entries);
    if (map.size() != entries.size()) fail(node, "expected keys that differ from one another");
    return map;
  }

  Value classObjectOf(const JsonNode& node) {
    ValueObject object;
    object.className = within(std::string_view("$class"), [&] { return textOf(*memberOf(node, "$class")); });
    if (const JsonNode* const fields = memberOf(node, "$fields")) {
      if (node.members.size() != 2) fail(node, R"(expected nothing beside "$class" and "$fields")");
      object.fields = within(std::string_view("$fields"), [&] { return pairsOf(*fields); });
    } else {
      object.fields = entriesOf(node, "$class");
    }
    return Value::object(std::move(object));
  }

  // A text, or the form of one that is no UTF-8.
  std::string textOf(const JsonNode& node) {
    if (node.kind == Kind::text) return std::string(*node.scalar.ifText());
    if (node.kind == Kind::object && node.members.size() == 1 && node.members.front().key == "$text") {
      return hexadecimalOf(node.members.front().value);
    }
    fail(node, "expected a text");
  }

  std::string hexadecimalOf(const JsonNode& node) const {
    if (node.kind == Kind::text) {
      if (auto bytes = bytesOfHexadecimal(*node.scalar.ifText())) return *bytes;
    }
    fail(node, "expected a text of hexadecimal digits, two a byte");
  }

  [[nodiscard]] double nameOf(const JsonNode& node, const std::string& expected) const {
    if (node.kind == Kind::text) {
      if (const auto value = realOfName(*node.scalar.ifText())) return *value;
    }
    fail(node, "expected " + expected + R"("inf", "-inf", "nan" or "nan:" and the 64 bits of one)");
  }

  [[nodiscard]] double secondsOf(const JsonNode& node) const {
    if (node.kind == Kind::real) return node.scalar.ifReal()->value;
    if (node.kind == Kind::integer && node.scalar.ifInteger()->fitsSigned()) {
      return static_cast<double>(static_cast<std::int64_t>(node.scalar.ifInteger()->low));
    }
    return nameOf(node, "seconds, a number of at most 64 bits, or ");
  }

  Value readNull(const Form& form) {
    if (form.value.kind != Kind::boolean || !*form.value.scalar.ifBoolean()) fail(form.value, "expected true");
    return {};
  }
  Value readReal(const Form& form) { return nameOf(form.value, ""); }
  Value readText(const Form& form) { return hexadecimalOf(form.value); }
  Value readData(const Form& form) { return Value::data(hexadecimalOf(form.value)); }
  Value readSet(const Form& form) { return Value::set(itemsOf(form.value)); }
  Value readMap(const Form& form) { return Value::map(pairsOf(form.value)); }

  Value readUid(const Form& form) {
    const Integer* const index = form.value.scalar.ifInteger();
    if (form.value.kind != Kind::integer || !index->fitsUnsigned()) fail(form.value, "expected an index");
    return Uid{.index = index->low};
  }

  Value readDate(const Form& form) {
    const double since1970 = secondsOf(form.value);
    if (!form.other) return Date{.seconds = since1970 - kFrom1970To2001};
    const double since2001 = nextTo("since2001", [&] { return secondsOf(*form.other); });
    const double sum = since2001 + kFrom1970To2001;
    if (!isSameDouble(sum, since1970)) {
      fail(*form.other,
           "\"since2001\" and \"$date\" are not the same moment; give one of them the other's value, or "
           "leave out \"since2001\"");
    }
    return Date{.seconds = since2001};
  }

  Value readUrl(const Form& form) {
    ValueUrl url{.text = textOf(form.value), .base = {}};
    if (form.other) {
      const JsonNode& base = *form.other;
      const bool isWhole = base.kind == Kind::object && memberOf(base, "$url") != nullptr;
      url.base = nextTo("base", [&] { return isWhole ? read(base) : Value::url({.text = textOf(base), .base = {}}); });
    }
    return Value::url(std::move(url));
  }

  std::vector<Step> path_;
};

const std::array<Reader::FormRow, 9> Reader::kForms = {{
    {"$date", "since2001", &Reader::readDate},
    {"$data", "", &Reader::readData},
    {"$map", "", &Reader::readMap},
    {"$null", "", &Reader::readNull},
    {"$real", "", &Reader::readReal},
    {"$set", "", &Reader::readSet},
    {"$text", "", &Reader::readText},
    {"$uid", "", &Reader::readUid},
    {"$url", "base", &Reader::readUrl},
}};

}  // namespace

std::optional<Value> parseArchiveJson(std::string_view document) {
  const JsonNode root = parseJson(document, kDeepestArchiveJson);
  if (root.kind == Kind::null) return std::nullopt;
  return Reader().read(root);
}

}  // namespace tavlo::cli
