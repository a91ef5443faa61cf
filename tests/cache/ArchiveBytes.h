// Archives for tests: those that other programs wrote, as files, and those put together from a property list.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cache/KeyedArchive.h"
#include "common/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {

inline std::string archiveFile(const std::string& name) {
  return readFile(std::string(TAVLO_SOURCE_DIR "/tests/fixtures/archives/") + name + ".bin");
}

inline std::string propertyListBytes(const Value& value) { return property_list::encode(value).value(); }

inline Value uid(std::uint64_t index) { return Uid{.index = index}; }

// A class as an archive's object.
inline Value classObject(const char* name) {
  return Value::map({{"$classname", name}, {"$classes", Value::list({name, "NSObject"})}});
}

inline Value archiveOf(const Value& top, ValueList objects) {
  return Value::map({{"$version", 100000},
                     {"$archiver", "NSKeyedArchiver"},
                     {"$top", top},
                     {"$objects", Value::list(std::move(objects))}});
}

// The objects behind object 0; the first is the root.
inline std::string archiveBytes(ValueList objects) {
  objects.insert(objects.begin(), "$null");
  return propertyListBytes(archiveOf(Value::map({{"root", uid(1)}}), std::move(objects)));
}

// On the heap in exactly its size, so that AddressSanitizer sees one byte too far.
inline std::optional<Value> decodeArchive(const std::string& bytes) {
  const auto exact = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), exact.get());
  return keyed_archive::decode({exact.get(), bytes.size()});
}

// What is wrong with the archive; "" when nothing is.
inline std::string archiveError(const std::string& bytes) {
  try {
    static_cast<void>(decodeArchive(bytes));
  } catch (const ArchiveError& error) {
    return error.what();
  }
  return "";
}

}  // namespace tavlo::test
