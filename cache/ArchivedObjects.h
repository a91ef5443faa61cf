// The objects of one keyed archive as they lie there: what each is, and which others it is made of.
//
// Values   views and pointers reach into the list of objects, which must outlive everything here.
// Bounds   an object that lies in many places is looked at in each, which is only linear while an archive does
//          not share below its own references: beyond that, and beyond mostCopiedBytes, an ArchiveError.
// Threads  one thread at a time.
// Throws   ArchiveError with the object's number, for what no archiver writes.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cache/KeyedArchiveFormat.h"
#include "common/Value.h"
#include "common/ValueNumbers.h"

namespace tavlo::keyed_archive {

// Where an error is.
struct Place {
  std::size_t object = 0;
  std::string_view knownClass;  // "" for others, whose names may be of any length

  [[noreturn]] void fail(const std::string& what) const;
};

// What an object is made of: a reference to an object that is there, or a value that stands in place.
using Part = const Value*;

// An object. `whole` is it when it has no parts, or `made` when it does not lie there as a value. The parts of a
// map, and of an object of a named class, are all keys and then all values; those of a URL its base and its text.
struct ArchivedObject {
  Place place;
  Form form = Form::object;
  std::string_view className;
  const Value* whole = nullptr;
  std::optional<Value> made;
  std::vector<Part> parts;
};

class ArchivedObjects {
 public:
  ArchivedObjects(const ValueList& objects, std::size_t archiveSize) : objects_(objects), archiveSize_(archiveSize) {}

  [[nodiscard]] std::size_t count() const { return objects_.size(); }
  [[nodiscard]] ArchivedObject object(std::size_t number);
  // A list, set or map of the property list that stands in a field of that object.
  [[nodiscard]] ArchivedObject container(const Place& place, const Value& container);

  // To be told of each text that a value holds a copy of.
  void copy(const Place& place, std::size_t bytes);

 private:
  struct Class {
    std::string_view name;
    Form form = Form::object;
  };

  void readFields(ArchivedObject& object, const ValueMap& fields);
  void readCustom(ArchivedObject& object, const ValueMap& fields);
  void readText(ArchivedObject& object, const ValueMap& fields);
  [[nodiscard]] const Value& plain(const Place& place, const ValueMap& fields, std::string_view name) const;
  [[nodiscard]] const Value& plain(Value::Kind kind, const char* kindName, const Place& place, const ValueMap& fields,
                                   std::string_view name) const;
  [[nodiscard]] double seconds(const Place& place, const ValueMap& fields) const;
  [[nodiscard]] const Value& fieldName(const Value& name);
  [[nodiscard]] const Class& classOf(const Place& place, const ValueMap& fields);
  [[nodiscard]] Part reference(const Place& place, std::string_view name, const Value& value) const;
  [[nodiscard]] Part part(const Place& place, const Value& value) const;
  void addItems(ArchivedObject& object, const ValueMap& fields, std::string_view name);
  void look(const Place& place, std::size_t parts);

  const ValueList& objects_;
  std::size_t archiveSize_;
  std::size_t looked_ = 0;
  std::size_t copied_ = 0;
  std::map<std::size_t, Class> classes_;
  std::unordered_map<const void*, Value> texts_;  // of bytes and of names with a "$" too many, by identity
  ValueNumbers names_;                            // of fields that begin with "$"
};

}  // namespace tavlo::keyed_archive
