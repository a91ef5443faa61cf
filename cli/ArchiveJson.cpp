#include "cli/ArchiveJson.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "cli/ArchiveNumbers.h"
#include "cli/Json.h"
#include "common/Utf8.h"

namespace tavlo::cli {
namespace {

using Kind = Value::Kind;

// Puts brackets, commas and line breaks where they belong, up to a limit.
class Emitter {
 public:
  enum class Break : bool { no, yes };

  Emitter(ArchiveLayout layout, std::size_t longest)
      : isIndented_(layout == ArchiveLayout::indented), longest_(longest) {}

  [[nodiscard]] std::string take() { return std::move(out_); }

  void put(std::string_view text) {
    if (text.size() > longest_ - out_.size()) {
      throw ArchiveTooLarge("its contents take more than " + std::to_string(longest_) + " bytes as text");
    }
    out_ += text;
  }

  [[nodiscard]] std::size_t size() const { return out_.size(); }

  // Puts the pieces of what was put, which have equal separators between them, in the order of their texts.
  using Piece = std::pair<std::size_t, std::size_t>;  // from, to
  void sort(const std::vector<Piece>& pieces) {
    if (pieces.size() < 2) return;
    const std::string separator = out_.substr(pieces[0].second, pieces[1].first - pieces[0].second);
    std::vector<std::string> texts;
    texts.reserve(pieces.size());
    for (const auto& [from, to] : pieces) texts.push_back(out_.substr(from, to - from));
    std::sort(texts.begin(), texts.end());
    out_.resize(pieces[0].first);
    for (const std::string& text : texts) out_.append(&text == texts.data() ? "" : separator).append(text);
  }

  void open(std::string_view bracket, Break isBroken = Break::yes) {
    put(bracket);
    levels_.push_back({.isBroken = isIndented_ && isBroken == Break::yes});
    if (levels_.back().isBroken) ++indent_;
  }
  void close(std::string_view bracket) {
    const Level level = levels_.back();
    levels_.pop_back();
    if (level.isBroken) --indent_;
    if (level.isBroken && !level.isEmpty) newLine();
    put(bracket);
  }

  // Before each item, and each key, of what is open.
  void next() {
    Level& level = levels_.back();
    if (!level.isEmpty) put(isIndented_ && !level.isBroken ? ", " : ",");
    if (level.isBroken) newLine();
    level.isEmpty = false;
  }
  void key(std::string_view name) {
    next();
    put(toJson(name));
    put(isIndented_ ? ": " : ":");
  }

 private:
  struct Level {
    bool isBroken = false;
    bool isEmpty = true;
  };

  void newLine() {
    put("\n");
    put(std::string(2 * indent_, ' '));
  }

  const bool isIndented_;
  const std::size_t longest_;
  std::string out_;
  std::vector<Level> levels_;
  std::size_t indent_ = 0;
};

bool isPlainKey(const Value& key) {
  const auto text = key.ifText();
  return text && !text->starts_with('$') && isUtf8(*text);
}

bool hasPlainKeys(const ValueMap& entries) {
  return std::all_of(entries.begin(), entries.end(), [](const auto& entry) { return isPlainKey(entry.first); });
}

class Writer {
 public:
  explicit Writer(Emitter& out) : out_(out) {}

  void write(const Value& value) {
    switch (value.kind()) {
      case Kind::null: return writeForm("$null", [&] { out_.put("true"); });
      case Kind::boolean: return out_.put(*value.ifBoolean() ? "true" : "false");
      case Kind::integer: return out_.put(value.ifInteger()->decimal());
      case Kind::real: return writeReal(value.ifReal()->value);
      case Kind::date: return writeDate(value.ifDate()->seconds);
      case Kind::text: return writeText(*value.ifText());
      case Kind::data: return writeHexadecimal("$data", *value.ifData());
      case Kind::url: return writeUrl(*value.ifUrl());
      case Kind::uid: return writeReference(*value.ifUid());
      case Kind::list: return writeItems(*value.ifList());
      case Kind::set: return writeForm("$set", [&] { writeSetItems(*value.ifSet()); });
      case Kind::map: return writeMap(*value.ifMap());
      case Kind::object: return writeObject(*value.ifObject());
    }
  }

 private:
  // An object of one member.
  template <class WriteMember>
  void writeForm(std::string_view key, WriteMember writeMember) {
    out_.open("{", Emitter::Break::no);
    out_.key(key);
    writeMember();
    out_.close("}");
  }

  void writeHexadecimal(std::string_view key, std::string_view bytes) {
    writeForm(key, [&] { out_.put('"' + hexadecimalBytes(bytes) + '"'); });
  }

  void writeText(std::string_view text) {
    if (isUtf8(text)) return out_.put(toJson(text));
    writeHexadecimal("$text", text);
  }

  void writeReal(double value) {
    if (std::isfinite(value)) return out_.put(realDigits(value));
    writeForm("$real", [&] { writeSeconds(value); });
  }

  void writeSeconds(double value) { out_.put(std::isfinite(value) ? realDigits(value) : '"' + realName(value) + '"'); }

  void writeDate(double since2001) {
    const double since1970 = since2001 + kFrom1970To2001;
    out_.open("{", Emitter::Break::no);
    out_.key("$date");
    writeSeconds(since1970);
    if (!isSameDouble(since1970 - kFrom1970To2001, since2001)) {
      out_.key("since2001");
      writeSeconds(since2001);
    }
    out_.close("}");
  }

  void writeUrl(const ValueUrl& url) {
    out_.open("{", Emitter::Break::no);
    out_.key("$url");
    writeText(url.text);
    if (url.base) {
      const ValueUrl* const base = url.base->ifUrl();
      out_.key("base");
      if (base && !base->base) {
        writeText(base->text);
      } else {
        write(*url.base);
      }
    }
    out_.close("}");
  }

  void writeReference(Uid uid) {
    if (uid.index == 0) return out_.put("null");
    writeForm("$uid", [&] { out_.put(std::to_string(uid.index)); });
  }

  void writeItems(const ValueList& items) {
    out_.open("[");
    for (const Value& item : items) {
      out_.next();
      write(item);
    }
    out_.close("]");
  }

  void writeSetItems(const ValueList& items) {
    std::vector<Emitter::Piece> pieces;
    pieces.reserve(items.size());
    out_.open("[");
    for (const Value& item : items) {
      out_.next();
      const std::size_t begin = out_.size();
      write(item);
      pieces.emplace_back(begin, out_.size());
    }
    out_.sort(pieces);
    out_.close("]");
  }

  void writePairs(const ValueMap& entries) {
    out_.open("[");
    for (const auto& [key, value] : entries) {
      out_.next();
      out_.open("[", Emitter::Break::no);
      out_.next();
      write(key);
      out_.next();
      write(value);
      out_.close("]");
    }
    out_.close("]");
  }

  void writeMembers(const ValueMap& entries) {
    for (const auto& [key, value] : entries) {
      out_.key(*key.ifText());
      write(value);
    }
  }

  void writeMap(const ValueMap& entries) {
    if (!hasPlainKeys(entries)) return writeForm("$map", [&] { writePairs(entries); });
    out_.open("{");
    writeMembers(entries);
    out_.close("}");
  }

  void writeObject(const ValueObject& object) {
    out_.open("{");
    out_.key("$class");
    writeText(object.className);
    if (hasPlainKeys(object.fields)) {
      writeMembers(object.fields);
    } else {
      out_.key("$fields");
      writePairs(object.fields);
    }
    out_.close("}");
  }

  Emitter& out_;
};

}  // namespace

std::string toArchiveJson(const std::optional<Value>& value, ArchiveLayout layout, std::size_t longest) {
  Emitter out(layout, longest);
  Writer(out).write(value.value_or(Uid{}));
  return out.take();
}

}  // namespace tavlo::cli
