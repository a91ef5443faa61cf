// ContentKind: what a file is, by how it begins.
#pragma once

#include <cstddef>
#include <string_view>

namespace tavlo::cli {

// How many bytes are enough to tell; all of a shorter file.
inline constexpr std::size_t kTellingBytes = 4096;

// "PNG image", "MP4 video", "list", "HTML page", "JSON text", "empty", ...; "other" for what is none that the
// cache might hold. `beginning` is the file's first kTellingBytes, all of a shorter file.
[[nodiscard]] std::string_view contentKind(std::string_view beginning);

}  // namespace tavlo::cli
