#include "cli/ImagePreview.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace tavlo::cli {
namespace {

using Color = std::array<std::uint8_t, 3>;
using Pixel = std::optional<Color>;  // absent: nothing to see

constexpr std::string_view kReset = "\x1b[0m";
constexpr std::string_view kUpper = "▀";
constexpr std::string_view kLower = "▄";
constexpr std::string_view kRamp = ".:-=+*#%@";

class Scaled {
 public:
  Scaled(const platform::Image& image, std::size_t width)
      : image_(image),
        width_(std::clamp<std::size_t>(width, 1, image.width())),
        height_(std::max<std::size_t>(1, image.height() * width_ / image.width())) {}

  [[nodiscard]] std::size_t width() const { return width_; }
  [[nodiscard]] std::size_t height() const { return height_; }

  // The mean of the pixels that fall together, weighed by their opacity. Nothing below the last row.
  [[nodiscard]] Pixel at(std::size_t x, std::size_t y) const {
    if (y >= height_) return std::nullopt;
    std::array<std::uint64_t, 3> sums{};
    std::uint64_t opacity = 0;
    std::uint64_t count = 0;
    for (std::size_t row = first(y, image_.height(), height_); row < end(y, image_.height(), height_); ++row) {
      for (std::size_t column = first(x, image_.width(), width_); column < end(x, image_.width(), width_); ++column) {
        const auto pixel = image_.pixels().subspan((row * image_.width() + column) * 4, 4);
        for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += std::uint64_t{pixel[i]} * pixel[3];
        opacity += pixel[3];
        ++count;
      }
    }
    if (opacity < count * 128) return std::nullopt;
    Color color{};
    for (std::size_t i = 0; i < color.size(); ++i) {
      color[i] = static_cast<std::uint8_t>((sums[i] + opacity / 2) / opacity);
    }
    return color;
  }

 private:
  static std::size_t first(std::size_t i, std::size_t all, std::size_t scaled) { return i * all / scaled; }
  static std::size_t end(std::size_t i, std::size_t all, std::size_t scaled) {
    return std::max((i + 1) * all / scaled, i * all / scaled + 1);
  }

  const platform::Image& image_;
  const std::size_t width_;
  const std::size_t height_;
};

void appendColor(std::string& out, std::string_view layer, const Color& color) {
  out += layer;
  for (const std::uint8_t sample : color) out.append(";").append(std::to_string(sample));
}

// How the terminal is to draw the next character; what stood before it counts no more.
std::string styleOf(const Pixel& front, const Pixel& back) {
  std::string style = "\x1b[0";
  if (front) appendColor(style, ";38;2", *front);
  if (back) appendColor(style, ";48;2", *back);
  return style += 'm';
}

std::string blockLine(const Scaled& scaled, std::size_t y) {
  std::string line;
  std::string style = std::string(kReset);
  for (std::size_t x = 0; x < scaled.width(); ++x) {
    const Pixel upper = scaled.at(x, y);
    const Pixel lower = scaled.at(x, y + 1);
    const std::string next = upper ? styleOf(upper, lower) : styleOf(lower, std::nullopt);
    if (next != style) line += next;
    style = next;
    line += upper ? kUpper : lower ? kLower : " ";
  }
  if (style != kReset) line += kReset;
  return line;
}

// By the usual weights of the three colours.
std::size_t brightness(const Color& color) { return (color[0] * 299U + color[1] * 587U + color[2] * 114U) / 1000U; }

std::string characterLine(const Scaled& scaled, std::size_t y) {
  std::string line;
  for (std::size_t x = 0; x < scaled.width(); ++x) {
    std::size_t sum = 0;
    std::size_t count = 0;
    for (const Pixel& pixel : {scaled.at(x, y), scaled.at(x, y + 1)}) {
      if (!pixel) continue;
      sum += brightness(*pixel);
      ++count;
    }
    line += count == 0 ? ' ' : kRamp[sum / count * kRamp.size() / 256];
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace

std::string imagePreview(const platform::Image& image, PreviewLook look, std::size_t width) {
  const Scaled scaled(image, std::min(width, kWidestPreview));
  std::string text;
  for (std::size_t y = 0; y < scaled.height(); y += 2) {
    text += look == PreviewLook::blocks ? blockLine(scaled, y) : characterLine(scaled, y);
    text += '\n';
  }
  return text;
}

}  // namespace tavlo::cli
