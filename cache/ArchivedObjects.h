// The objects of one keyed archive as they lie there: what each is, and which others it is made of.
//
// Values   texts are views of values that are kept here; the property list must outlive everything here.
// Bounds   an object that lies in many places is looked at in each, which is only linear while an archive does
//          not share below its own references: beyond that, and beyond mostCopiedBytes, an ArchiveError.
// Threads  one thread at a time.
// Throws   ArchiveError with the object's number, for what no archiver writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cache/KeyedArchiveFormat.h"
#include "common/PropertyListObjects.h"
#include "common/PropertyListValues.h"
#include "common/Value.h"
#include "common/ValueNumbers.h"

namespace tavlo::keyed_archive {

// Where an error is.
struct Place {
  std::size_t object = 0;
  std::string_view knownClass;  // "" for others, whose names may be of any length

  // With numbers in place of each "#", and what has a name.
  [[noreturn]] void fail(std::string_view pattern, std::initializer_list<std::uint64_t> numbers = {}) const;
  [[noreturn]] void fail(std::string_view word, std::string_view what) const;
};

// What an object is made of: an object of the archive when it is `referred` to, or what stands in place, an object of
// the property list.
struct Part {
  std::uint32_t number = 0;
  bool referred = false;
};

// An object: `whole` when it has no parts. Others have the parts that were appended to those given: of a map all keys
// and then all values, of a URL its base and its text, of an object of a named class its values, whose names were
// appended to the `names` given. `keys` is the references to a map's keys.
struct ArchivedObject {
  Place place;
  Form form = Form::object;
  std::string_view className;
  std::optional<Value> whole;
  std::string_view keys;
};

class ArchivedObjects {
 public:
  using Fields = property_list::Objects::Object;

  // Of the list of objects, which is an object of the property list, as are containers.
  ArchivedObjects(const property_list::Objects& file, property_list::Values& values, const Fields& list,
                  std::size_t archiveSize)
      : file_(file), values_(values), list_(list), archiveSize_(archiveSize) {}

  [[nodiscard]] ArchivedObject object(std::size_t number, std::vector<Part>& parts, ValueList& names);
  // A list, set or map of the property list that stands in a field of that object.
  [[nodiscard]] ArchivedObject container(const Place& place, std::size_t container, std::vector<Part>& parts);

  // To be told of each text that a value holds a copy of.
  void copy(const Place& place, std::size_t bytes);

 private:
  // The fields of the last object of a named class, by the references to their names.
  struct Names {
    std::string_view references;
    std::vector<std::pair<Value, std::size_t>> fields;  // and where their values are
  };

  void readFields(ArchivedObject& object, const Fields& fields, std::vector<Part>& parts, ValueList& names);
  void readCustom(ArchivedObject& object, const Fields& fields, std::vector<Part>& parts, ValueList& names);
  [[nodiscard]] Names namesOf(const Place& place, const Fields& fields);
  [[nodiscard]] Value text(const Place& place, const Fields& fields);
  [[nodiscard]] std::size_t field(const Place& place, const Fields& fields, std::string_view name) const;
  [[nodiscard]] std::size_t listed(std::size_t number) const { return file_.part(list_, number); }
  // A plain object, by its number, and whether it may be asked for again.
  struct Plain {
    std::size_t number = 0;
    bool isKept = false;
  };
  [[nodiscard]] Plain plain(Value::Kind kind, const Place& place, const Fields& fields, std::string_view name) const;
  [[nodiscard]] Value valueOf(const Plain& plain) { return values_.of(plain.number, plain.isKept); }
  [[nodiscard]] double seconds(const Place& place, const Fields& fields);
  [[nodiscard]] Value fieldName(std::size_t number, const Value& name);
  [[nodiscard]] std::string_view classOf(const Place& place, const Fields& fields);
  [[nodiscard]] Part reference(const Place& place, std::string_view name, std::size_t number) const;
  [[nodiscard]] Part part(const Place& place, std::size_t number) const;
  [[nodiscard]] Part referred(const Place& place, const Fields& uid) const;
  [[nodiscard]] std::string_view addItems(const Place& place, const Fields& fields, std::string_view name,
                                          std::vector<Part>& parts);
  void look(const Place& place, std::size_t parts);

  const property_list::Objects& file_;
  property_list::Values& values_;
  const Fields list_;
  const std::size_t archiveSize_;
  std::size_t looked_ = 0;
  std::size_t copied_ = 0;
  // By the number of what each was made of: names of classes, texts of bytes, names of fields without their dollar.
  std::unordered_map<std::size_t, Value> made_;
  ValueNumbers names_;  // of fields
  Names lastNames_;
};

}  // namespace tavlo::keyed_archive
