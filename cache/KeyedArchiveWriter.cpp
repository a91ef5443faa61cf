#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cache/KeyedArchive.h"
#include "cache/KeyedArchiveFormat.h"
#include "common/PropertyList.h"
#include "common/PropertyListScalars.h"
#include "common/ValueNumbers.h"

namespace tavlo::keyed_archive {
namespace {

using Kind = Value::Kind;

// A text that a property list can hold as one.
bool isWritable(std::string_view text) {
  const auto isAscii = [](char byte) { return (byte & 0x80) == 0; };
  return std::all_of(text.begin(), text.end(), isAscii) || property_list::toUtf16(text);
}

Form formOf(Kind kind) {
  switch (kind) {
    case Kind::null: return Form::null;
    case Kind::date: return Form::date;
    case Kind::url: return Form::url;
    case Kind::list: return Form::list;
    case Kind::set: return Form::set;
    case Kind::map: return Form::map;
    default: return Form::object;
  }
}

// Numbers the objects in the order in which the platform's archiver meets them: an object, its parts, keys
// before values, its class.
class Writer {
 public:
  Writer() { reserve(0, kNothing); }

  [[nodiscard]] std::size_t add(const Value& value, std::size_t depth);
  [[nodiscard]] Value objects() { return Value::list(std::move(objects_)); }
  [[nodiscard]] std::size_t copiedBytes() const { return copiedBytes_; }

 private:
  // An object that is being written.
  struct Draft {
    std::size_t number = 0;
    std::size_t depth = 0;
    std::size_t height = 0;
    ValueMap fields;
  };

  [[noreturn]] void fail(const std::string& what) const {
    throw ArchiveError("object " + std::to_string(objects_.size()) + " of the archive to be: " + what);
  }

  std::size_t reserve(std::size_t height, Value value);
  [[nodiscard]] std::size_t addPlain(const Value& value);
  [[nodiscard]] std::size_t addUnshared(const Value& value, std::size_t depth);
  void addParts(Draft& draft, const Value& value);
  [[nodiscard]] Value reference(Draft& draft, const Value& part);
  template <class Parts, class PartOf>
  void addReferences(Draft& draft, std::string_view name, const Parts& parts, PartOf partOf);
  void addUrl(Draft& draft, const ValueUrl& url);
  void addCustom(Draft& draft, const ValueObject& object);
  [[nodiscard]] Value fieldName(const Value& name);
  [[nodiscard]] Value written(const Value& name) const;
  [[nodiscard]] Value classNamed(const std::string& name);
  void check(std::string_view text, const char* what) const;

  ValueList objects_;
  std::vector<std::size_t> heights_;
  std::unordered_map<const void*, Value> fieldNames_;  // by identity
  std::size_t copiedBytes_ = 0;
  std::deque<Value> texts_;  // of URLs, kept while contents are known by where they lie
  std::unordered_map<const void*, std::size_t> byIdentity_;
  ValueNumbers numbers_;
  std::unordered_map<std::size_t, std::size_t> byNumber_;
  std::map<std::string, std::size_t> classes_;
};

std::size_t Writer::reserve(std::size_t height, Value value) {
  objects_.push_back(std::move(value));
  heights_.push_back(height);
  return objects_.size() - 1;
}

// Contents are known again by where they lie before they are looked at, so that sharing costs nothing.
std::size_t Writer::add(const Value& value, std::size_t depth) {
  if (const Uid* const uid = value.ifUid()) {
    if (uid->index != 0) fail("a reference (" + std::to_string(uid->index) + ") is no value to archive");
    return 0;
  }
  const void* const identity = value.identity();
  if (const auto known = byIdentity_.find(identity); known != byIdentity_.end()) return known->second;
  const bool container = identity && !value.isText() && !value.isData();
  const std::size_t number = container ? addUnshared(value, depth) : addPlain(value);
  if (identity) byIdentity_.emplace(identity, number);
  return number;
}

// Equal ones are one object.
std::size_t Writer::addPlain(const Value& value) {
  const auto [known, isNew] = byNumber_.try_emplace(numbers_.of(value), objects_.size());
  if (!isNew) return known->second;
  if (value.ifText()) check(*value.ifText(), "a text");
  if (value.isNull() || value.ifDate()) return addUnshared(value, 0);
  return reserve(0, value);
}

std::size_t Writer::addUnshared(const Value& value, std::size_t depth) {
  if (depth >= property_list::kDeepest) fail("nested too deep");
  Draft draft{.number = reserve(0, {}), .depth = depth, .height = 0, .fields = {}};
  addParts(draft, value);
  const std::string name(value.ifObject() ? value.ifObject()->className : classNameOf(formOf(value.kind())));
  draft.fields.append(kClass, classNamed(name));
  // A part that was first met near the top may be deep by itself, so its height counts, not its depth.
  if (draft.height >= property_list::kDeepest) fail("nested too deep");
  heights_[draft.number] = value.identity() ? draft.height + 1 : 0;
  objects_[draft.number] = Value::map(std::move(draft.fields));
  return draft.number;
}

void Writer::addParts(Draft& draft, const Value& value) {
  const auto itself = [](const Value& item) -> const Value& { return item; };
  switch (value.kind()) {
    case Kind::date: draft.fields.append(kTime, value.ifDate()->seconds); break;
    case Kind::url: addUrl(draft, *value.ifUrl()); break;
    case Kind::list: addReferences(draft, kItems, *value.ifList(), itself); break;
    case Kind::set: addReferences(draft, kItems, *value.ifSet(), itself); break;
    case Kind::map:
      addReferences(draft, kKeys, *value.ifMap(), [](const auto& entry) -> const Value& { return entry.first; });
      addReferences(draft, kItems, *value.ifMap(), [](const auto& entry) -> const Value& { return entry.second; });
      break;
    case Kind::object: addCustom(draft, *value.ifObject()); break;
    default: break;
  }
}

Value Writer::reference(Draft& draft, const Value& part) {
  const std::size_t number = add(part, draft.depth + 1);
  draft.height = std::max(draft.height, heights_[number]);
  return Uid{.index = number};
}

template <class Parts, class PartOf>
void Writer::addReferences(Draft& draft, std::string_view name, const Parts& parts, PartOf partOf) {
  ValueList references;
  references.reserve(parts.size());
  for (const auto& part : parts) references.push_back(reference(draft, partOf(part)));
  draft.fields.append(name, Value::list(std::move(references)));
}

void Writer::addUrl(Draft& draft, const ValueUrl& url) {
  if (url.base && !url.base->ifUrl()) fail("a URL's base is no URL");
  copiedBytes_ += url.text.size();
  draft.fields.append(kBase, url.base ? reference(draft, *url.base) : Uid{.index = 0});
  draft.fields.append(kRelative, reference(draft, texts_.emplace_back(url.text)));
}

// Truth values and numbers stand in place, as the platform's coders write them.
void Writer::addCustom(Draft& draft, const ValueObject& object) {
  check(object.className, "a class name");
  if (object.className.empty()) fail("an object without a class name");
  if (keyed_archive::formOf(object.className) != Form::object) {
    fail("an object of class \"" + object.className + "\", which is a value of its own kind");
  }
  copiedBytes_ += object.className.size();
  for (const auto& [name, value] : object.fields) {
    const bool inPlace = value.ifBoolean() || value.ifInteger() || value.ifReal();
    draft.fields.append(fieldName(name), inPlace ? value : reference(draft, value));
  }
}

// As it stands in the archive; a long one is looked into once, however many objects have it.
Value Writer::fieldName(const Value& name) {
  if (!name.isText()) fail("a field's name is no text");
  if (!name.identity()) return written(name);
  const auto [made, isNew] = fieldNames_.try_emplace(name.identity(), name);
  if (isNew) made->second = written(name);
  return made->second;
}

Value Writer::written(const Value& name) const {
  const std::string_view text = *name.ifText();
  check(text, "a field's name");
  return takesOneMoreDollar(text) ? Value(std::string(1, '$').append(text)) : name;
}

Value Writer::classNamed(const std::string& name) {
  const auto [known, isNew] = classes_.try_emplace(name, objects_.size());
  if (isNew) {
    const Value itself(name);
    reserve(0, Value::map({{kClassName, itself}, {kClasses, Value::list({itself, kRootClass})}}));
  }
  return Uid{.index = known->second};
}

void Writer::check(std::string_view text, const char* what) const {
  if (!isWritable(text)) fail(std::string(what) + " is not UTF-8");
}

}  // namespace

std::string encode(const std::optional<Value>& root) {
  Writer writer;
  const Uid top{.index = root ? writer.add(*root, 0) : 0};
  const auto bytes = property_list::encode(Value::map({{kVersion, kFormatVersion},
                                                       {kArchiver, kOurArchiver},
                                                       {kTop, Value::map({{kRoot, top}})},
                                                       {kObjects, writer.objects()}}));
  if (!bytes) throw ArchiveError("the archive to be is no property list");
  if (bytes->size() > kLargestArchive) {
    throw ArchiveError(std::to_string(bytes->size()) + " bytes; an archive of more than " +
                       std::to_string(kLargestArchive) + " is not written");
  }
  if (writer.copiedBytes() > mostCopiedBytes(bytes->size())) {
    throw ArchiveError("the archive to be has too many URLs and class names for its size");
  }
  return *bytes;
}

}  // namespace tavlo::keyed_archive
