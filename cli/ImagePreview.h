// An image as text, for a look at it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/Image.h"

namespace tavlo::cli {

// Half blocks in 24-bit colours, two pixels a character; or plain characters, brighter pixels as fuller ones.
enum class PreviewLook : std::uint8_t { blocks, characters };

inline constexpr std::size_t kWidestPreview = 40;

// Lines of at most `width` characters, at least one, each ended by a line feed. An image that is wider is scaled down;
// its proportions stay where a character is twice as high as wide. What is less than half opaque shows as nothing.
[[nodiscard]] std::string imagePreview(const platform::Image& image, PreviewLook look, std::size_t width);

}  // namespace tavlo::cli
