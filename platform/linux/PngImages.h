// PngImages: PNG files as pixels.
//
// Values   every kind of PNG, whatever its depth, colours and interlacing; 16 bits a sample are rounded to 8, and a
//          colour that is marked transparent has alpha 0. Samples are taken as they stand: colour profiles, gamma
//          and all other chunks that a decoder may leave out are skipped unread, and may be damaged. What follows
//          the image's end is not looked at.
// Absent   a file that is missing, unreadable, no regular file or no PNG; that is damaged or ends before its end; or
//          that is beyond a limit: kLargestFile bytes, kLongestSide pixels a side, kMostPixels in all, 128 KiB
//          of packed data for one row and what follows the last one.
// Threads  any thread, any time.
//
// Memory: the file, its pixels, and a few rows. Pixels are made only once the file is long enough to hold them,
// so a small file that announces a huge image costs nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/Image.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class PngImages final : public platform::Images {
 public:
  static constexpr std::size_t kLargestFile = std::size_t{16} << 20U;  // bytes
  static constexpr std::uint32_t kLongestSide = 8192;
  static constexpr std::uint64_t kMostPixels = std::uint64_t{16} << 20U;

  explicit PngImages(Syscalls& syscalls = Syscalls::real()) : syscalls_(syscalls) {}

  [[nodiscard]] std::shared_ptr<const platform::Image> imageWithContentsOfFile(const Text& path) override;

 private:
  Syscalls& syscalls_;
};

// The image that these bytes of a file are; nullptr where a file of them has none, and always when the library is
// built without images.
[[nodiscard]] std::shared_ptr<const platform::Image> decodePng(std::string_view file);

}  // namespace tavlo::linux_platform
