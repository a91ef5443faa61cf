#include <algorithm>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cache/ArchivedObjects.h"
#include "cache/KeyedArchive.h"
#include "cache/KeyedArchiveFormat.h"
#include "common/PropertyList.h"
#include "common/ValueNumbers.h"

namespace tavlo::keyed_archive {
namespace {

// Makes values of an archive's objects, each when it is first referred to, and then keeps it.
class Reader {
 public:
  Reader(const ValueList& objects, std::size_t archiveSize);

  // Of an object that is in the list.
  [[nodiscard]] Value decode(std::size_t number);

 private:
  enum class State : std::uint8_t { unread, begun, whole };

  struct Node {
    const Value* value = nullptr;
    std::uint16_t height = 0;  // containers inside one another, this one included
    State state = State::unread;
  };

  // An object whose parts are being decoded.
  struct Frame {
    Node* node = nullptr;
    ArchivedObject object;
    std::size_t next = 0;
  };

  void enter(const Place& from, Part part);
  void close(const Frame& frame);
  [[nodiscard]] Node* nodeOf(Part part);
  [[nodiscard]] const Value& valueOf(Part part);
  [[nodiscard]] Value assembled(const ArchivedObject& object);
  [[nodiscard]] ValueList items(const ArchivedObject& object);
  [[nodiscard]] std::vector<ValueMap::Entry> entries(const ArchivedObject& object);
  [[nodiscard]] Value url(const ArchivedObject& object);

  ArchivedObjects objects_;
  const Value nothing_ = Uid{.index = 0};
  std::deque<Value> made_;  // whatever does not lie in the archive as a value
  std::vector<Frame> frames_;
  std::vector<Node> nodes_;
  std::unordered_map<const void*, Node> inPlace_;  // containers in fields, by identity
  ValueNumbers keys_;
};

Reader::Reader(const ValueList& objects, std::size_t archiveSize)
    : objects_(objects, archiveSize), nodes_(objects.size()) {
  nodes_[0].value = &nothing_;
  nodes_[0].state = State::whole;
}

Value Reader::decode(std::size_t number) {
  const Value root = Uid{.index = number};
  enter({.object = number, .knownClass = {}}, &root);
  while (!frames_.empty()) {
    Frame& frame = frames_.back();
    if (frame.next < frame.object.parts.size()) {
      const Part part = frame.object.parts[frame.next++];
      enter(frame.object.place, part);
    } else {
      close(frame);
      frames_.pop_back();
    }
  }
  return *nodes_[number].value;
}

// Decodes at once what has no parts, and puts what has some on the frames.
void Reader::enter(const Place& from, Part part) {
  Node* const node = nodeOf(part);
  if (!node || node->state == State::whole) return;
  ArchivedObject object =
      part->ifUid() ? objects_.object(static_cast<std::size_t>(part->ifUid()->index)) : objects_.container(from, *part);
  if (node->state == State::begun) object.place.fail("it contains itself");
  if (object.made) object.whole = &made_.emplace_back(*std::move(object.made));
  if (object.whole) {
    node->value = object.whole;
    node->state = State::whole;
    return;
  }
  if (frames_.size() == property_list::kDeepest) object.place.fail("nested too deep");
  node->state = State::begun;
  frames_.push_back({.node = node, .object = std::move(object)});
}

void Reader::close(const Frame& frame) {
  std::size_t height = 0;
  for (const Part part : frame.object.parts) {
    if (const Node* const node = nodeOf(part)) height = std::max<std::size_t>(height, node->height);
  }
  // What was first met near the top may be shared by something deep down, so its height counts, not its depth.
  if (height == property_list::kDeepest) frame.object.place.fail("nested too deep");
  frame.node->value = &made_.emplace_back(assembled(frame.object));
  frame.node->height = static_cast<std::uint16_t>(height + 1);
  frame.node->state = State::whole;
}

// nullptr for a plain value.
Reader::Node* Reader::nodeOf(Part part) {
  if (const Uid* const uid = part->ifUid()) return &nodes_[static_cast<std::size_t>(uid->index)];
  return part->ifList() || part->ifSet() || part->ifMap() ? &inPlace_[part->identity()] : nullptr;
}

const Value& Reader::valueOf(Part part) {
  const Node* const node = nodeOf(part);
  return node ? *node->value : *part;
}

Value Reader::assembled(const ArchivedObject& object) {
  switch (object.form) {
    case Form::url: return url(object);
    case Form::list: return Value::list(items(object));
    case Form::set: return Value::set(items(object));
    case Form::map: return Value::map(ValueMap(entries(object), keys_));
    default: break;
  }
  ValueMap fields;
  fields.reserve(object.parts.size() / 2);
  for (auto& [name, value] : entries(object)) fields.append(std::move(name), std::move(value));
  return Value::object({.className = std::string(object.className), .fields = std::move(fields)});
}

ValueList Reader::items(const ArchivedObject& object) {
  ValueList items;
  items.reserve(object.parts.size());
  for (const Part part : object.parts) items.push_back(valueOf(part));
  return items;
}

std::vector<ValueMap::Entry> Reader::entries(const ArchivedObject& object) {
  const std::size_t count = object.parts.size() / 2;
  std::vector<ValueMap::Entry> entries;
  entries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    entries.emplace_back(valueOf(object.parts[i]), valueOf(object.parts[count + i]));
  }
  return entries;
}

Value Reader::url(const ArchivedObject& object) {
  const Value& base = valueOf(object.parts[0]);
  const Value& text = valueOf(object.parts[1]);
  if (!base.ifUid() && !base.ifUrl()) object.place.fail("\"NS.base\" is no URL");
  if (!text.ifText()) object.place.fail("\"NS.relative\" is no text");
  objects_.copy(object.place, text.ifText()->size());
  return Value::url({.text = *text.ifText(), .base = base.ifUrl() ? std::optional(base) : std::nullopt});
}

[[noreturn]] void fail(std::string_view word, const std::string& what) {
  throw ArchiveError(std::string(1, '"').append(word).append("\" ").append(what));
}

const Value& entry(const ValueMap& archive, std::string_view word) {
  const Value* const value = archive.find(word);
  if (!value) fail(word, "is missing");
  return *value;
}

// The archiver's name is not looked at: what it wrote decides.
const ValueList& objectsOf(const ValueMap& archive) {
  if (entry(archive, kVersion) != Value(kFormatVersion)) {
    fail(kVersion, "is not " + std::to_string(kFormatVersion) + ", the only one that is read");
  }
  const ValueList* const objects = entry(archive, kObjects).ifList();
  if (!objects) fail(kObjects, "is no list");
  if (objects->empty() || objects->front() != Value(kNothing)) fail(kObjects, "does not begin with \"$null\"");
  return *objects;
}

std::size_t rootOf(const ValueMap& archive, std::size_t objectCount) {
  const ValueMap* const top = entry(archive, kTop).ifMap();
  if (!top) fail(kTop, "is no map");
  const Value* root = top->find(kRoot);
  if (!root && top->size() == 1) root = &top->begin()->second;
  if (!root) fail(kTop, "has " + std::to_string(top->size()) + " entries and none is \"root\"");
  const Uid* const uid = root->ifUid();
  if (!uid) fail(kTop, "holds a plain value where a reference to the root belongs");
  if (uid->index >= objectCount) {
    fail(kTop, "refers to object " + std::to_string(uid->index) + " of " + std::to_string(objectCount));
  }
  return static_cast<std::size_t>(uid->index);
}

}  // namespace

std::optional<Value> decode(std::string_view bytes) {
  if (bytes.size() > kLargestArchive) {
    throw ArchiveError(std::to_string(bytes.size()) + " bytes; an archive of more than " +
                       std::to_string(kLargestArchive) + " is not read");
  }
  const property_list::Decoded list = property_list::decode(bytes);
  if (!list.value) throw ArchiveError(list.error);
  const ValueMap* const archive = list.value->ifMap();
  if (!archive) throw ArchiveError("no keyed archive: the property list is no map");
  const ValueList& objects = objectsOf(*archive);
  const std::size_t root = rootOf(*archive, objects.size());
  if (root == 0) return std::nullopt;
  return Reader(objects, bytes.size()).decode(root);
}

}  // namespace tavlo::keyed_archive
