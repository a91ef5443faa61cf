// A binary property list put together by hand: objects as bytes, and every number about them open to a lie.
// What decoding makes of it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/PropertyList.h"

namespace tavlo::test {

inline std::string bigEndianBytes(std::uint64_t value, std::size_t size) {
  std::string bytes;
  for (std::size_t i = size; i-- > 0;) bytes.push_back(i < 8 ? static_cast<char>(value >> (8 * i)) : '\0');
  return bytes;
}

struct RawPropertyList {
  std::vector<std::string> objects;
  std::size_t offsetSize = 1;
  std::size_t referenceSize = 1;
  std::string header = "bplist00";
  bool tableFirst = false;

  std::map<std::size_t, std::uint64_t> offsets;  // instead of the true ones
  std::optional<std::uint64_t> saidOffsetSize;
  std::optional<std::uint64_t> saidReferenceSize;
  std::optional<std::uint64_t> saidCount;
  std::optional<std::uint64_t> saidTop;
  std::optional<std::uint64_t> saidTable;

  [[nodiscard]] std::string bytes() const {
    const std::size_t tableSize = objects.size() * offsetSize;
    std::string contents;
    std::string table;
    for (std::size_t i = 0; i < objects.size(); ++i) {
      const std::size_t offset = header.size() + (tableFirst ? tableSize : 0) + contents.size();
      table += bigEndianBytes(offsets.contains(i) ? offsets.at(i) : offset, offsetSize);
      contents += objects[i];
    }
    const std::size_t tableAt = header.size() + (tableFirst ? 0 : contents.size());
    return header + (tableFirst ? table + contents : contents + table) + std::string(6, '\0') +
           bigEndianBytes(saidOffsetSize.value_or(offsetSize), 1) +
           bigEndianBytes(saidReferenceSize.value_or(referenceSize), 1) +
           bigEndianBytes(saidCount.value_or(objects.size()), 8) + bigEndianBytes(saidTop.value_or(0), 8) +
           bigEndianBytes(saidTable.value_or(tableAt), 8);
  }
};

// A text of at most 14 characters.
// Of less than 128 bytes.
inline std::string asciiObject(const std::string& text) {
  const auto size = static_cast<char>(text.size());
  return (size < 15 ? std::string(1, static_cast<char>(0x50 + size)) : std::string("\x5F\x10") + size) + text;
}

inline RawPropertyList rawList(std::vector<std::string> objects) {
  RawPropertyList list;
  list.objects = std::move(objects);
  return list;
}

// On the heap in exactly its size, so that AddressSanitizer sees one byte too far.
inline property_list::Decoded decodeExactly(const std::string& bytes) {
  const auto exact = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), exact.get());
  return property_list::decode({exact.get(), bytes.size()});
}

inline std::string errorOf(const std::string& bytes) {
  const property_list::Decoded result = decodeExactly(bytes);
  EXPECT_EQ(result.value.has_value(), result.error.empty());
  return result.error;
}
inline std::string errorOf(const RawPropertyList& list) { return errorOf(list.bytes()); }

// A value that came from anywhere can be written and read again.
inline void expectValueOrError(const std::string& bytes, const std::string& what) {
  const property_list::Decoded result = decodeExactly(bytes);
  ASSERT_EQ(result.value.has_value(), result.error.empty()) << what;
  if (!result.value) return;
  const auto again = property_list::encode(*result.value);
  ASSERT_TRUE(again) << what;
  ASSERT_EQ(property_list::decode(*again).value, result.value) << what;
}

// A list of two texts.
inline RawPropertyList soundList() { return rawList({"\xA2\x01\x02", asciiObject("one"), asciiObject("two")}); }

// Objects before this one are null, the one itself is the top.
inline RawPropertyList topObject(const std::string& object) {
  RawPropertyList list = rawList({std::string(1, '\0'), object});
  list.saidTop = 1;
  return list;
}

inline constexpr std::uint64_t kTwoTo31 = std::uint64_t{1} << 31U;
inline constexpr std::uint64_t kTwoTo61 = std::uint64_t{1} << 61U;
inline constexpr std::uint64_t kTwoTo62 = std::uint64_t{1} << 62U;
inline constexpr std::uint64_t kTwoTo63 = std::uint64_t{1} << 63U;
inline constexpr std::uint64_t kAllOnes = ~std::uint64_t{0};

// A file that must not decode, and what decoding says of it.
struct Bad {
  const char* name;
  std::string bytes;
  const char* error;
};

inline void expectErrors(const std::vector<Bad>& cases) {
  for (const auto& [name, bytes, error] : cases) EXPECT_EQ(errorOf(bytes), error) << name;
}

}  // namespace tavlo::test
