// A keyed archive put together by hand, object by object of its property list: what is one object, what is another
// with equal contents, and what has a text as UTF-16 is all open.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/common/RawPropertyList.h"

namespace tavlo::test {

// Each call adds an object to the property list and gives its number, of which there are 256. Texts are short, of at
// most 14 characters.
class RawArchive {
 public:
  using Number = std::size_t;
  using Numbers = std::vector<Number>;
  using Entry = std::pair<Number, Number>;

  Number ascii(const std::string& text) { return add(asciiObject(text)); }
  Number utf16(const std::string& text) {
    std::string bytes(1, static_cast<char>(0x60U + text.size()));
    for (const char letter : text) bytes += {'\0', letter};
    return add(bytes);
  }
  Number integer(std::uint64_t value) { return add('\x12' + bigEndianBytes(value, 4)); }
  Number null() { return add(std::string(1, '\0')); }
  Number uid(std::uint64_t index) { return add('\x80' + bigEndianBytes(index, 1)); }
  Number list(const Numbers& items) { return add("\xAF\x11" + bigEndianBytes(items.size(), 2) + references(items)); }
  Number uids(const std::vector<std::uint64_t>& indices) {
    Numbers numbers;
    for (const std::uint64_t index : indices) numbers.push_back(uid(index));
    return list(numbers);
  }
  Number map(const std::vector<Entry>& entries) {
    Numbers parts;
    for (const auto& [key, value] : entries) parts.push_back(key);
    for (const auto& [key, value] : entries) parts.push_back(value);
    return add("\xDF\x11" + bigEndianBytes(entries.size(), 2) + references(parts));
  }

  Number classObject(const std::string& name) { return map({{ascii("$classname"), ascii(name)}}); }
  // With its class under an index of the archive.
  Number object(std::uint64_t classIndex, std::vector<Entry> fields) {
    fields.emplace_back(ascii("$class"), uid(classIndex));
    return map(fields);
  }
  Number array(std::uint64_t classIndex, Number items) { return object(classIndex, {{ascii("NS.objects"), items}}); }
  Number dictionary(std::uint64_t classIndex, Number keys, Number values) {
    return object(classIndex, {{ascii("NS.keys"), keys}, {ascii("NS.objects"), values}});
  }

  // The archive of these objects, counted from 1; the first is the root.
  std::string bytes(Numbers objects) {
    objects.insert(objects.begin(), ascii("$null"));
    return bytesOf({{ascii("$version"), integer(100'000)},
                    {ascii("$top"), map({{ascii("root"), uid(1)}})},
                    {ascii("$objects"), list(objects)}});
  }
  // The file whose top is a map of these.
  std::string bytesOf(const std::vector<Entry>& entries) {
    list_.saidTop = map(entries);
    return list_.bytes();
  }

 private:
  Number add(const std::string& object) {
    list_.objects.push_back(object);
    return list_.objects.size() - 1;
  }
  static std::string references(const Numbers& numbers) {
    std::string bytes;
    for (const Number number : numbers) bytes.push_back(static_cast<char>(number));
    return bytes;
  }

  RawPropertyList list_{.objects = {},
                        .offsetSize = 2,
                        .offsets = {},
                        .saidOffsetSize = {},
                        .saidReferenceSize = {},
                        .saidCount = {},
                        .saidTop = {},
                        .saidTable = {}};
};

}  // namespace tavlo::test
