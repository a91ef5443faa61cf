#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cache/ArchivedObjects.h"
#include "cache/KeyedArchive.h"
#include "cache/KeyedArchiveFormat.h"
#include "common/Numbered.h"
#include "common/PropertyList.h"
#include "common/PropertyListObjects.h"
#include "common/PropertyListValues.h"
#include "common/ValueNumbers.h"

namespace tavlo::keyed_archive {
namespace {

using property_list::Objects;
using property_list::Values;

// Makes values of an archive's objects, each when it is first referred to. Those that are whole wait for the one that
// they are parts of; a copy is kept of what may be referred to again.
class Reader {
 public:
  Reader(const Objects& file, Values& values, const Objects::Object& list, std::size_t archiveSize)
      : file_(file), values_(values), objects_(file, values, list, archiveSize), kept_(list.count) {}

  // Of an object that is in the list.
  [[nodiscard]] Value decode(std::size_t number);

 private:
  enum class State : std::uint8_t { unread, begun, whole };

  // Something that may be referred to again.
  struct Node {
    Value value;
    std::uint16_t height = 0;  // containers inside one another, this one included
    State state = State::unread;
  };

  // An object whose parts are being decoded.
  struct Frame {
    std::size_t node = 0;  // where to keep it, if at all
    ArchivedObject object;
    std::size_t nextPart = 0;
    std::size_t firstPart = 0;
    std::size_t firstValue = 0;
    std::uint16_t height = 0;  // the greatest of its parts'
  };

  // The keys of the last map, by the references to them. They are texts, all different.
  struct Keys {
    std::string_view references;
    ValueList keys;
  };

  void enter(const Place& from, Part part);
  void close();
  void keep(std::size_t node, const Value& value, std::uint16_t height);
  void add(Value value, std::uint16_t height);
  [[nodiscard]] std::size_t nodeOf(Part part);
  [[nodiscard]] Value assembled(const Frame& frame);
  [[nodiscard]] Value map(const Frame& frame);
  [[nodiscard]] std::vector<ValueMap::Entry> entries(const Frame& frame);
  [[nodiscard]] bool hasLastKeys(const ArchivedObject& object) const {
    return !object.keys.empty() && object.keys == lastKeys_.references;
  }
  [[nodiscard]] Value url(const Frame& frame);

  const Objects& file_;
  Values& values_;
  ArchivedObjects objects_;
  const Value nothing_ = Uid{.index = 0};
  std::vector<Frame> frames_;
  std::vector<Part> parts_;  // of all frames
  ValueList whole_;          // parts of all frames
  // Which node an object has, and which one a container in a field, by its number in the property list; from one.
  std::vector<Node> nodes_;
  std::vector<std::size_t> kept_;
  std::unordered_map<std::size_t, std::size_t> inPlace_;
  ValueNumbers keys_;
  Keys lastKeys_;
};

Value Reader::decode(std::size_t number) {
  enter({.object = number, .knownClass = {}}, {.number = static_cast<std::uint32_t>(number), .referred = true});
  while (!frames_.empty()) {
    Frame& frame = frames_.back();
    if (frame.nextPart < parts_.size()) {
      enter(frame.object.place, parts_[frame.nextPart++]);
    } else {
      close();
    }
  }
  return std::move(whole_.back());
}

// Decodes at once what has no parts, and puts what has some on the frames.
void Reader::enter(const Place& from, Part part) {
  if (part.referred && part.number == 0) return add(nothing_, 0);
  if (!part.referred && !file_.object(part.number).isContainer()) return add(values_.of(part.number), 0);
  const std::size_t node = nodeOf(part);
  const State state = node == 0 ? State::unread : nodes_[node - 1].state;
  if (state == State::whole) return add(nodes_[node - 1].value, nodes_[node - 1].height);
  Frame frame{.node = node,
              .object = {},
              .nextPart = parts_.size(),
              .firstPart = parts_.size(),
              .firstValue = whole_.size(),
              .height = 0};
  frame.object =
      part.referred ? objects_.object(part.number, parts_, whole_) : objects_.container(from, part.number, parts_);
  if (state == State::begun) frame.object.place.fail("it contains itself");
  if (frame.object.whole) {
    keep(node, *frame.object.whole, 0);
    return add(*std::move(frame.object.whole), 0);
  }
  if (frames_.size() == property_list::kDeepest) frame.object.place.fail("nested too deep");
  if (node != 0) nodes_[node - 1].state = State::begun;
  if (hasLastKeys(frame.object)) {
    whole_.insert(whole_.end(), lastKeys_.keys.begin(), lastKeys_.keys.end());
    frame.nextPart += lastKeys_.keys.size();
  }
  frames_.push_back(std::move(frame));
}

void Reader::close() {
  const Frame frame = std::move(frames_.back());
  frames_.pop_back();
  // What was first met near the top may be shared by something deep down, so its height counts, not its depth.
  if (frame.height == property_list::kDeepest) frame.object.place.fail("nested too deep");
  const auto height = static_cast<std::uint16_t>(frame.height + 1);
  Value value = assembled(frame);
  parts_.resize(frame.firstPart);
  whole_.resize(frame.firstValue);
  keep(frame.node, value, height);
  add(std::move(value), height);
}

void Reader::keep(std::size_t node, const Value& value, std::uint16_t height) {
  if (node != 0) nodes_[node - 1] = {.value = value, .height = height, .state = State::whole};
}

void Reader::add(Value value, std::uint16_t height) {
  whole_.push_back(std::move(value));
  if (!frames_.empty()) frames_.back().height = std::max(frames_.back().height, height);
}

// Zero for what only one way leads to.
std::size_t Reader::nodeOf(Part part) {
  if (!(part.referred ? file_.isSharedByUids(part.number) : file_.isShared(part.number))) return 0;
  std::size_t& node = part.referred ? kept_[part.number] : inPlace_[part.number];
  if (node == 0) {
    nodes_.emplace_back();
    node = nodes_.size();
  }
  return node;
}

Value Reader::assembled(const Frame& frame) {
  const auto first = whole_.begin() + static_cast<std::ptrdiff_t>(frame.firstValue);
  switch (frame.object.form) {
    case Form::url: return url(frame);
    case Form::list: return Value::list({std::make_move_iterator(first), std::make_move_iterator(whole_.end())});
    case Form::set: return Value::set({std::make_move_iterator(first), std::make_move_iterator(whole_.end())});
    case Form::map: return map(frame);
    default: break;
  }
  return Value::object(
      {.className = std::string(frame.object.className), .fields = ValueMap::ofDistinct(entries(frame))});
}

// Entries of keys that are known to be different, and of others.
Value Reader::map(const Frame& frame) {
  if (hasLastKeys(frame.object)) return Value::map(ValueMap::ofDistinct(entries(frame)));
  const std::size_t count = (whole_.size() - frame.firstValue) / 2;
  ValueMap map(entries(frame), keys_);
  const bool areTexts = std::all_of(map.begin(), map.end(), [](const auto& entry) { return entry.first.isText(); });
  if (map.size() == count && areTexts && !frame.object.keys.empty()) {
    lastKeys_ = {.references = frame.object.keys, .keys = {}};
    lastKeys_.keys.reserve(count);
    for (const auto& [key, value] : map) lastKeys_.keys.push_back(key);
  }
  return Value::map(std::move(map));
}

std::vector<ValueMap::Entry> Reader::entries(const Frame& frame) {
  const std::size_t count = (whole_.size() - frame.firstValue) / 2;
  Value* const keys = whole_.data() + frame.firstValue;
  std::vector<ValueMap::Entry> entries;
  entries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) entries.emplace_back(std::move(keys[i]), std::move(keys[count + i]));
  return entries;
}

Value Reader::url(const Frame& frame) {
  const Value& base = whole_[frame.firstValue];
  const Value& text = whole_[frame.firstValue + 1];
  const Place& place = frame.object.place;
  if (!base.ifUid() && !base.ifUrl()) place.fail(kBase, "is no URL");
  if (!text.isText()) place.fail(kRelative, "is no text");
  objects_.copy(place, text.ifText()->size());
  return Value::url({.text = std::string(*text.ifText()), .base = base.ifUrl() ? std::optional(base) : std::nullopt});
}

[[noreturn]] void fail(std::string_view word, std::string_view pattern,
                       std::initializer_list<std::uint64_t> numbers = {}) {
  throw ArchiveError(std::string(1, '"').append(word).append("\" ").append(numbered(pattern, numbers)));
}

std::size_t entry(const Objects& file, const Objects::Object& archive, std::string_view word) {
  const auto number = file.find(archive, word);
  if (!number) fail(word, "is missing");
  return *number;
}

// The archiver's name is not looked at: what it wrote decides.
Objects::Object objectsOf(const Objects& file, Values& values, const Objects::Object& archive) {
  const std::size_t version = entry(file, archive, kVersion);
  if (file.object(version).isContainer() || values.of(version) != Value(kFormatVersion)) {
    fail(kVersion, "is not #, the only one that is read", {kFormatVersion});
  }
  const Objects::Object objects = file.object(entry(file, archive, kObjects));
  if (objects.kind() != Value::Kind::list) fail(kObjects, "is no list");
  if (objects.count == 0 || !file.isText(file.object(file.part(objects, 0)), kNothing)) {
    fail(kObjects, "does not begin with \"$null\"");
  }
  return objects;
}

std::size_t rootOf(const Value& topValue, std::size_t objectCount) {
  const ValueMap* const top = topValue.ifMap();
  if (!top) fail(kTop, "is no map");
  const Value* root = top->find(kRoot);
  if (!root && top->size() == 1) root = &top->begin()->second;
  if (!root) fail(kTop, "has # entries and none is \"root\"", {top->size()});
  const Uid* const uid = root->ifUid();
  if (!uid) fail(kTop, "holds a plain value where a reference to the root belongs");
  if (uid->index >= objectCount) {
    fail(kTop, "refers to object # of #", {uid->index, objectCount});
  }
  return static_cast<std::size_t>(uid->index);
}

}  // namespace

std::optional<Value> decode(std::string_view bytes) {
  if (bytes.size() > kLargestArchive) {
    throw ArchiveError(numbered("# bytes; an archive of more than # is not read", {bytes.size(), kLargestArchive}));
  }
  Objects file(bytes);
  if (!file.check()) throw ArchiveError(file.takeError());
  const Objects::Object archive = file.object(file.top());
  if (archive.kind() != Value::Kind::map) throw ArchiveError("no keyed archive: the property list is no map");
  Values values(file);
  const Objects::Object objects = objectsOf(file, values, archive);
  const std::size_t root = rootOf(values.of(entry(file, archive, kTop)), objects.count);
  if (root == 0) return std::nullopt;
  return Reader(file, values, objects, bytes.size()).decode(root);
}

}  // namespace tavlo::keyed_archive
