// The platform's images.
//
// Values   width and height in pixels, both at least 1; four bytes a pixel (red, green, blue, alpha, not
//          multiplied by it), row by row from the top left, without padding.
// Absent   nullptr: the path is absent, or what it leads to is no image that the platform can read.
// Threads  any thread, any time; an image never changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "common/Text.h"

namespace tavlo::platform {

// May outlive the platform that loaded it.
class Image {
 public:
  Image() = default;
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  virtual ~Image() = default;

  [[nodiscard]] virtual std::size_t width() const = 0;
  [[nodiscard]] virtual std::size_t height() const = 0;
  [[nodiscard]] virtual std::span<const std::uint8_t> pixels() const = 0;
};

class Images {
 public:
  Images() = default;
  Images(const Images&) = delete;
  Images& operator=(const Images&) = delete;
  virtual ~Images() = default;

  [[nodiscard]] virtual std::shared_ptr<const Image> imageWithContentsOfFile(const Text& path) = 0;
};

}  // namespace tavlo::platform
