#include "cache/ArchivedObjects.h"

#include <utility>

#include "cache/KeyedArchive.h"
#include "common/Numbered.h"
#include "common/Utf8.h"

namespace tavlo::keyed_archive {
namespace {

using Kind = Value::Kind;

double asDouble(const Integer& integer) {
  if (integer.fitsSigned()) return static_cast<double>(static_cast<std::int64_t>(integer.low));
  constexpr double kTwoTo64 = 18446744073709551616.0;
  return static_cast<double>(integer.high) * kTwoTo64 + static_cast<double>(integer.low);
}

}  // namespace

void Place::fail(std::string_view pattern, std::initializer_list<std::uint64_t> numbers) const {
  std::string where = numbered("object #", {object});
  if (!knownClass.empty()) where.append(" (").append(knownClass).append(")");
  throw ArchiveError(where.append(": ").append(numbered(pattern, numbers)));
}

void Place::fail(std::string_view word, std::string_view what) const {
  fail(std::string(1, '"').append(word).append("\" ").append(what));
}

ArchivedObject ArchivedObjects::object(std::size_t number, std::vector<Part>& parts, ValueList& names) {
  ArchivedObject object;
  object.place.object = number;
  const std::size_t value = listed(number);
  const Fields fields = file_.object(value);
  switch (fields.kind()) {
    case Kind::map: readFields(object, fields, parts, names); break;
    case Kind::null: object.place.fail("a property-list null; an archive's null is an object of NSNull");
    case Kind::uid: object.place.fail("a reference where an object belongs");
    case Kind::list:
    case Kind::set: object.place.fail("a bare property-list container; an archive's is an object with a class");
    default: object.whole = values_.of(value, file_.isSharedByUids(number));
  }
  return object;
}

void ArchivedObjects::readFields(ArchivedObject& object, const Fields& fields, std::vector<Part>& parts,
                                 ValueList& names) {
  look(object.place, 1 + fields.count);
  object.className = classOf(object.place, fields);
  object.form = formOf(object.className);
  if (object.form != Form::object) object.place.knownClass = object.className;
  const Place& place = object.place;
  switch (object.form) {
    case Form::null: object.whole = Value(); break;
    case Form::text: object.whole = text(place, fields); break;
    case Form::data: object.whole = valueOf(plain(Kind::data, place, fields, kData)); break;
    case Form::date: object.whole = Date{.seconds = seconds(place, fields)}; break;
    case Form::url:
      for (const auto name : {kBase, kRelative}) {
        parts.push_back(reference(place, name, field(place, fields, name)));
      }
      break;
    case Form::list:
    case Form::set: static_cast<void>(addItems(place, fields, kItems, parts)); break;
    case Form::map: {
      const std::size_t before = parts.size();
      object.keys = addItems(place, fields, kKeys, parts);
      const std::size_t keys = parts.size() - before;
      static_cast<void>(addItems(place, fields, kItems, parts));
      if (const std::size_t values = parts.size() - before - keys; values != keys) {
        place.fail("# keys for # values", {keys, values});
      }
      break;
    }
    case Form::object: readCustom(object, fields, parts, names); break;
  }
}

void ArchivedObjects::readCustom(ArchivedObject& object, const Fields& fields, std::vector<Part>& parts,
                                 ValueList& names) {
  copy(object.place, object.className.size());
  if (file_.keys(fields) != lastNames_.references) lastNames_ = namesOf(object.place, fields);
  for (const auto& [name, place] : lastNames_.fields) {
    names.push_back(name);
    parts.push_back(part(object.place, file_.part(fields, fields.count + place)));
  }
}

// As they stand in the archive, without the class. Of fields with one name the last one's value counts.
ArchivedObjects::Names ArchivedObjects::namesOf(const Place& place, const Fields& fields) {
  Names names{.references = file_.keys(fields), .fields = {}};
  ValuePlaces places(names_);
  ValuePlaces dollars(names_);
  for (std::size_t i = 0; i < fields.count; ++i) {
    const std::size_t number = file_.part(fields, i);
    const Fields name = file_.object(number);
    if (name.kind() != Kind::text) place.fail("a field's name is no text");
    if (file_.isText(name, kClass)) continue;
    const Value asItStands = values_.of(number);
    if (const std::size_t known = places.of(asItStands, names.fields.size()); known < names.fields.size()) {
      names.fields[known].second = i;
      continue;
    }
    Value itself = fieldName(number, asItStands);
    if (itself.ifText()->starts_with('$') && dollars.of(itself, i) != i) {
      place.fail("two fields have one name, but for a \"$\"");
    }
    names.fields.emplace_back(std::move(itself), i);
  }
  return names;
}

Value ArchivedObjects::text(const Place& place, const Fields& fields) {
  if (file_.find(fields, kText) || !file_.find(fields, kBytes)) return valueOf(plain(Kind::text, place, fields, kText));
  const std::size_t number = plain(Kind::data, place, fields, kBytes).number;
  const auto [known, isNew] = made_.try_emplace(number);
  if (isNew) {
    const std::string_view bytes = file_.contents(file_.object(number));
    if (!isUtf8(bytes)) place.fail(kBytes, "is not UTF-8");
    known->second = bytes;
  }
  return known->second;
}

std::size_t ArchivedObjects::field(const Place& place, const Fields& fields, std::string_view name) const {
  const auto number = file_.find(fields, name);
  if (!number) place.fail(name, "is missing");
  return *number;
}

// A field of a known class, in place or by reference.
ArchivedObjects::Plain ArchivedObjects::plain(Kind kind, const Place& place, const Fields& fields,
                                              std::string_view name) const {
  const Part found = part(place, field(place, fields, name));
  const bool isReferred = found.referred && found.number > 0;
  const std::size_t number = isReferred ? listed(found.number) : found.number;
  const Kind itsKind = found.referred && !isReferred ? Kind::uid : file_.object(number).kind();
  if (itsKind != kind && !(kind == Kind::real && itsKind == Kind::integer)) {
    place.fail(name, kind == Kind::text ? "is no text" : kind == Kind::data ? "is no data" : "is no number");
  }
  return {.number = number, .isKept = isReferred && file_.isSharedByUids(found.number)};
}

double ArchivedObjects::seconds(const Place& place, const Fields& fields) {
  const Value time = valueOf(plain(Kind::real, place, fields, kTime));
  return time.ifInteger() ? asDouble(*time.ifInteger()) : time.ifReal()->value;
}

// As its class has it.
Value ArchivedObjects::fieldName(std::size_t number, const Value& name) {
  if (!name.ifText()->starts_with("$$") || !takesOneMoreDollar(*name.ifText())) return name;
  const auto [made, isNew] = made_.try_emplace(number);
  if (isNew) made->second = name.ifText()->substr(1);
  return made->second;
}

ArchivedObject ArchivedObjects::container(const Place& place, std::size_t container, std::vector<Part>& parts) {
  const Fields contents = file_.object(container);
  ArchivedObject object;
  object.place = place;
  look(place, contents.count);
  if (contents.kind() == Kind::map) {
    object.form = Form::map;
    const auto entries = values_.entries(contents);
    for (const auto& [key, value] : entries) parts.push_back(part(place, key));
    for (const auto& [key, value] : entries) parts.push_back(part(place, value));
    return object;
  }
  object.form = contents.kind() == Kind::list ? Form::list : Form::set;
  for (std::size_t i = 0; i < contents.count; ++i) parts.push_back(part(place, file_.part(contents, i)));
  return object;
}

// Looked into once, however many objects are of it.
std::string_view ArchivedObjects::classOf(const Place& place, const Fields& fields) {
  const std::size_t number = reference(place, kClass, field(place, fields, kClass)).number;
  const std::size_t its = listed(number);
  if (const auto known = made_.find(its); known != made_.end()) return *known->second.ifText();
  const Place there{.object = number, .knownClass = {}};
  const Fields itsFields = file_.object(its);
  if (itsFields.kind() != Kind::map) there.fail("no class, but the \"$class\" of object #", {place.object});
  look(there, itsFields.count);
  const std::size_t name = field(there, itsFields, kClassName);
  if (file_.object(name).kind() != Kind::text) there.fail(kClassName, "is no text");
  const Value text = values_.of(name);
  if (text.ifText()->empty()) there.fail(kClassName, "is empty");
  return *made_.try_emplace(its, text).first->second.ifText();
}

Part ArchivedObjects::reference(const Place& place, std::string_view name, std::size_t number) const {
  const Fields value = file_.object(number);
  if (value.form != property_list::kUid) {
    place.fail(name, "holds a plain value where a reference belongs");
  }
  return referred(place, value);
}

Part ArchivedObjects::part(const Place& place, std::size_t number) const {
  const Fields value = file_.object(number);
  if (value.kind() == Kind::null) {
    place.fail("it holds a property-list null; an archive's null is an object of NSNull");
  }
  if (value.form == property_list::kUid) return referred(place, value);
  return {.number = static_cast<std::uint32_t>(number), .referred = false};
}

Part ArchivedObjects::referred(const Place& place, const Fields& uid) const {
  const std::uint64_t index = file_.uid(uid);
  if (index >= list_.count) {
    place.fail("it refers to object # of #", {index, list_.count});
  }
  return {.number = static_cast<std::uint32_t>(index), .referred = true};
}

std::string_view ArchivedObjects::addItems(const Place& place, const Fields& fields, std::string_view name,
                                           std::vector<Part>& parts) {
  const Fields items = file_.object(field(place, fields, name));
  if (items.kind() != Kind::list) place.fail(name, "is no list");
  if (name == kItems) look(place, items.count);
  for (std::size_t i = 0; i < items.count; ++i) parts.push_back(reference(place, name, file_.part(items, i)));
  return file_.contents(items);
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
