// libplist: binary property lists in C. Only where peers::kLibPlist is true.
#pragma once

#include <memory>
#include <string>
#include <string_view>

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

}  // namespace tavlo::bench::peers
