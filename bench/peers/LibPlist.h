// libplist: binary property lists in C. Only where peers::kLibPlist is true.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Value.h"

namespace tavlo::bench::peers {

struct PlistFree {
  void operator()(void* node) const;
};

// A decoded list, freed at the end; nullptr when the bytes are no binary property list.
struct Plist {
  std::unique_ptr<void, PlistFree> root;
};

[[nodiscard]] Plist plistFromBinary(std::string_view bytes);

// By a walk over every node; see bench/Outline.h.
[[nodiscard]] std::string answerOf(const Plist& list);

// A keyed archive of a list of maps: each record's names and values, which are nodes of the archive's own, nothing
// copied.
struct PlistRecords {
  using Record = std::vector<std::pair<void*, void*>>;

  Plist archive;
  std::vector<Record> records;
};

[[nodiscard]] PlistRecords plistRecords(std::string_view archive);
[[nodiscard]] std::string answerOf(const PlistRecords& list);

// The keyed archive of a list of maps of plain values and dates, each distinct one once.
[[nodiscard]] std::string plistArchive(const Value& list);

}  // namespace tavlo::bench::peers
