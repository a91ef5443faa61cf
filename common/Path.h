// Paths: how they are joined, what the cache calls its own entries, and how a path becomes a URL.
#pragma once

#include <string_view>

#include "common/Text.h"

namespace tavlo {

inline constexpr std::string_view kCacheDirectoryName = "TavloCache";
inline constexpr std::string_view kLogFileName = "TavloLogFile.txt";  // in the cache directory; clearing keeps it

// A directory and a name with exactly one "/" between them; the name is not changed otherwise. With an empty
// name the directory itself. Absent in a directory that is absent or empty.
[[nodiscard]] Text appendedPathComponent(Text directory, std::string_view name);

// The "file://" URL of an absolute path: every byte but letters, digits and !$&'()*+,-./:=@_~ percent-encoded,
// in capital digits. Absent for any other path, and for one that holds U+0000.
[[nodiscard]] Text fileUrl(const Text& path);

}  // namespace tavlo
