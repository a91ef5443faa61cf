// What lies in a cache directory, as a list shows it. Nothing is made, and no link is followed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavlo::cli {

struct CacheEntry {
  std::string name;  // its bytes, whatever they are
  std::string_view kind;
  std::optional<std::uint64_t> size;  // in bytes, of a file
  std::int64_t modified = 0;          // seconds since 1970
};

// In the order of their names. Absent when there is no directory. Throws Failure when it cannot be read.
[[nodiscard]] std::optional<std::vector<CacheEntry>> cacheEntries(const std::filesystem::path& folder);

}  // namespace tavlo::cli
