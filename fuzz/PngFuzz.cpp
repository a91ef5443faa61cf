// Any bytes end in no image or in one that is whole and within the limits, and in the same one again. Each input is
// tried as it is and with the checksums of its chunks made right, since hardly any mutation would pass them.
#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/Promise.h"
#include "platform/linux/PngImages.h"

namespace {

using tavlo::fuzz::require;
using tavlo::linux_platform::decodePng;
using tavlo::linux_platform::PngImages;

std::uint32_t checksum(std::string_view bytes) {
  std::uint32_t crc = ~std::uint32_t{0};
  for (const char c : bytes) {
    crc ^= static_cast<std::uint8_t>(c);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
  }
  return ~crc;
}

std::string mended(std::string file) {
  constexpr std::size_t kSignature = 8;
  constexpr std::size_t kAround = 12;  // length and kind before a chunk's data, checksum behind
  for (std::size_t at = kSignature; at + kAround <= file.size();) {
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < 4; ++i) length = (length << 8U) | static_cast<std::uint8_t>(file[at + i]);
    if (length > file.size() - at - kAround) break;
    const std::uint32_t crc = checksum(std::string_view(file).substr(at + 4, std::size_t{length} + 4));
    at += kAround + length;
    for (std::size_t i = 0; i < 4; ++i) file[at - 4 + i] = static_cast<char>(crc >> (24U - 8U * i));
  }
  return file;
}

void decodeTwice(std::string_view file) {
  const auto image = decodePng(file);
  const auto again = decodePng(file);
  require((image == nullptr) == (again == nullptr), "the same bytes are an image each time");
  if (!image) return;
  require(image->width() > 0 && image->width() <= PngImages::kLongestSide, "the width is within the limit");
  require(image->height() > 0 && image->height() <= PngImages::kLongestSide, "the height is within the limit");
  require(image->width() * image->height() <= PngImages::kMostPixels, "the pixels are within the limit");
  require(image->pixels().size() == image->width() * image->height() * 4, "the image is whole");
  require(std::ranges::equal(image->pixels(), again->pixels()), "the same bytes are the same image");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view file = tavlo::fuzz::textOf(data, size);
  decodeTwice(file);
  decodeTwice(mended(std::string(file)));
  return 0;
}
