// libpng without us, and images to decode.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tavlo::bench::peers {

// Eight bits a sample: red, green, blue, alpha.
struct Pixels {
  std::size_t width = 0;
  std::size_t height = 0;
  std::vector<std::uint8_t> rgba;
};

// Made comparable: the size and a hash.
[[nodiscard]] inline std::string answerOf(const Pixels& pixels) {
  const std::string_view bytes(reinterpret_cast<const char*>(pixels.rgba.data()), pixels.rgba.size());
  return std::to_string(pixels.width) + " x " + std::to_string(pixels.height) + " pixels, " +
         std::to_string(std::hash<std::string_view>()(bytes));
}

// By libpng's simplified interface, and by its full one. Both throw std::runtime_error on any failure.
[[nodiscard]] Pixels pngRead(const std::string& path);
[[nodiscard]] Pixels pngReadInFull(const std::string& path);

void pngWrite(const std::string& path, const Pixels& pixels);

}  // namespace tavlo::bench::peers
