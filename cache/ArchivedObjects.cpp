#include "cache/ArchivedObjects.h"

#include <set>

#include "cache/KeyedArchive.h"
#include "common/Utf8.h"

namespace tavlo::keyed_archive {
namespace {

using Kind = Value::Kind;

std::string quoted(std::string_view word) { return std::string(1, '"').append(word).append(1, '"'); }

const Value& field(const Place& place, const ValueMap& fields, std::string_view name) {
  const Value* const value = fields.find(name);
  if (!value) place.fail(quoted(name) + " is missing");
  return *value;
}

const Value& ofKind(Kind kind, const char* kindName, const Place& place, std::string_view name, const Value& value) {
  if (value.kind() != kind) place.fail(quoted(name) + " is no " + kindName);
  return value;
}

const Value& fieldOf(Kind kind, const char* kindName, const Place& place, const ValueMap& fields,
                     std::string_view name) {
  return ofKind(kind, kindName, place, name, field(place, fields, name));
}

double asDouble(const Integer& integer) {
  if (integer.fitsSigned()) return static_cast<double>(static_cast<std::int64_t>(integer.low));
  constexpr double kTwoTo64 = 18446744073709551616.0;
  return static_cast<double>(integer.high) * kTwoTo64 + static_cast<double>(integer.low);
}

}  // namespace

void Place::fail(const std::string& what) const {
  std::string where = "object " + std::to_string(object);
  if (!knownClass.empty()) where.append(" (").append(knownClass).append(")");
  throw ArchiveError(where.append(": ").append(what));
}

ArchivedObject ArchivedObjects::object(std::size_t number) {
  ArchivedObject object;
  object.place.object = number;
  const Value& value = objects_[number];
  switch (value.kind()) {
    case Kind::map: readFields(object, *value.ifMap()); break;
    case Kind::null: object.place.fail("a property-list null; an archive's null is an object of NSNull");
    case Kind::uid: object.place.fail("a reference where an object belongs");
    case Kind::list:
    case Kind::set: object.place.fail("a bare property-list container; an archive's is an object with a class");
    default: object.whole = &value;
  }
  return object;
}

void ArchivedObjects::readFields(ArchivedObject& object, const ValueMap& fields) {
  look(object.place, 1 + fields.size());
  const Class& itsClass = classOf(object.place, fields);
  object.form = itsClass.form;
  object.className = itsClass.name;
  if (object.form != Form::object) object.place.knownClass = itsClass.name;
  const Place& place = object.place;
  switch (object.form) {
    case Form::null: object.made = Value(); break;
    case Form::text: readText(object, fields); break;
    case Form::data: object.whole = &plain(Kind::data, "data", place, fields, kData); break;
    case Form::date: object.made = Date{.seconds = seconds(place, fields)}; break;
    case Form::url:
      for (const auto name : {kBase, kRelative}) {
        object.parts.push_back(reference(place, name, field(place, fields, name)));
      }
      break;
    case Form::list:
    case Form::set: addItems(object, fields, kItems); break;
    case Form::map: {
      addItems(object, fields, kKeys);
      const std::size_t keys = object.parts.size();
      addItems(object, fields, kItems);
      if (const std::size_t values = object.parts.size() - keys; values != keys) {
        place.fail(std::to_string(keys) + " keys for " + std::to_string(values) + " values");
      }
      break;
    }
    case Form::object: readCustom(object, fields); break;
  }
}

void ArchivedObjects::readCustom(ArchivedObject& object, const ValueMap& fields) {
  copy(object.place, object.className.size());
  object.parts.reserve(2 * fields.size());
  std::set<std::size_t> dollars;
  for (const auto& [name, value] : fields) {
    if (!name.ifText()) object.place.fail("a field's name is no text");
    if (*name.ifText() == kClass) continue;
    const Part part = &fieldName(name);
    if (part->ifText()->starts_with('$') && !dollars.insert(names_.of(*part)).second) {
      object.place.fail("two fields have one name, but for a \"$\"");
    }
    object.parts.push_back(part);
  }
  for (const auto& [name, value] : fields) {
    if (*name.ifText() != kClass) object.parts.push_back(part(object.place, value));
  }
}

void ArchivedObjects::readText(ArchivedObject& object, const ValueMap& fields) {
  if (fields.find(kText) || !fields.find(kBytes)) {
    object.whole = &plain(Kind::text, "text", object.place, fields, kText);
    return;
  }
  const Value& bytes = plain(Kind::data, "data", object.place, fields, kBytes);
  const auto [text, isNew] = texts_.try_emplace(bytes.identity());
  if (isNew) {
    if (!isUtf8(*bytes.ifData())) object.place.fail(quoted(kBytes) + " is not UTF-8");
    text->second = *bytes.ifData();
  }
  object.whole = &text->second;
}

// A field of a known class, in place or by reference.
const Value& ArchivedObjects::plain(const Place& place, const ValueMap& fields, std::string_view name) const {
  const Value& value = *part(place, field(place, fields, name));
  const Uid* const uid = value.ifUid();
  return uid && uid->index > 0 ? objects_[static_cast<std::size_t>(uid->index)] : value;
}

const Value& ArchivedObjects::plain(Kind kind, const char* kindName, const Place& place, const ValueMap& fields,
                                    std::string_view name) const {
  return ofKind(kind, kindName, place, name, plain(place, fields, name));
}

double ArchivedObjects::seconds(const Place& place, const ValueMap& fields) const {
  const Value& time = plain(place, fields, kTime);
  if (const Integer* const whole = time.ifInteger()) return asDouble(*whole);
  return ofKind(Kind::real, "number", place, kTime, time).ifReal()->value;
}

// As its class has it.
const Value& ArchivedObjects::fieldName(const Value& name) {
  if (!name.ifText()->starts_with("$$")) return name;
  const auto [made, isNew] = texts_.try_emplace(name.identity(), name);
  if (isNew && takesOneMoreDollar(*name.ifText())) made->second = name.ifText()->substr(1);
  return made->second;
}

ArchivedObject ArchivedObjects::container(const Place& place, const Value& container) {
  ArchivedObject object;
  object.place = place;
  if (const ValueMap* const map = container.ifMap()) {
    look(place, map->size());
    object.form = Form::map;
    for (const auto& [key, value] : *map) object.parts.push_back(part(place, key));
    for (const auto& [key, value] : *map) object.parts.push_back(part(place, value));
    return object;
  }
  const ValueList& items = container.ifList() ? *container.ifList() : *container.ifSet();
  look(place, items.size());
  object.form = container.ifList() ? Form::list : Form::set;
  for (const Value& item : items) object.parts.push_back(part(place, item));
  return object;
}

// Looked into once, however many objects are of it.
const ArchivedObjects::Class& ArchivedObjects::classOf(const Place& place, const ValueMap& fields) {
  const auto number = static_cast<std::size_t>(reference(place, kClass, field(place, fields, kClass))->ifUid()->index);
  if (const auto known = classes_.find(number); known != classes_.end()) return known->second;
  const Place there{.object = number, .knownClass = {}};
  const ValueMap* const itsFields = objects_[number].ifMap();
  if (!itsFields) there.fail("no class, but the " + quoted(kClass) + " of object " + std::to_string(place.object));
  look(there, itsFields->size());
  const std::string& name = *fieldOf(Kind::text, "text", there, *itsFields, kClassName).ifText();
  if (name.empty()) there.fail(quoted(kClassName) + " is empty");
  return classes_.emplace(number, Class{.name = name, .form = formOf(name)}).first->second;
}

Part ArchivedObjects::reference(const Place& place, std::string_view name, const Value& value) const {
  const Uid* const uid = value.ifUid();
  if (!uid) place.fail(quoted(name) + " holds a plain value where a reference belongs");
  return part(place, value);
}

Part ArchivedObjects::part(const Place& place, const Value& value) const {
  if (value.isNull()) place.fail("it holds a property-list null; an archive's null is an object of NSNull");
  const Uid* const uid = value.ifUid();
  if (uid && uid->index >= objects_.size()) {
    place.fail("it refers to object " + std::to_string(uid->index) + " of " + std::to_string(objects_.size()));
  }
  return &value;
}

void ArchivedObjects::addItems(ArchivedObject& object, const ValueMap& fields, std::string_view name) {
  const ValueList& items = *fieldOf(Kind::list, "list", object.place, fields, name).ifList();
  if (name == kItems) look(object.place, items.size());
  object.parts.reserve(object.parts.size() + items.size());
  for (const Value& item : items) object.parts.push_back(reference(object.place, name, item));
}

// Each part takes at least a byte, so that those of objects that lie apart never sum up to more than the input.
// The allowance is for archivers that write equal containers of a property list once.
void ArchivedObjects::look(const Place& place, std::size_t parts) {
  constexpr std::size_t kAllowance = 65'536;
  looked_ += parts;
  if (looked_ > archiveSize_ + kAllowance) place.fail("too much is shared in other ways than by references");
}

void ArchivedObjects::copy(const Place& place, std::size_t bytes) {
  copied_ += bytes;
  if (copied_ > mostCopiedBytes(archiveSize_)) place.fail("too many URLs and class names for the archive's size");
}

}  // namespace tavlo::keyed_archive
