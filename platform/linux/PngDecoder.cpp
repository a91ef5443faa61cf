// libpng reports an error by a longjmp to where it was last called. That must not pass over a destructor, so each
// call stands in guarded(), whose steps have nothing to destroy; what they fill belongs to the decoder outside.
#include <png.h>

#include <csetjmp>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/linux/PngImages.h"

namespace tavlo::linux_platform {
namespace {

constexpr std::size_t kSignature = 8;
constexpr std::uint64_t kMostOutOfAByte = 1032;  // what the format's compression makes of one byte at best
constexpr std::size_t kLargestChunk = std::size_t{64} << 10U;
constexpr std::size_t kMostForARow = std::size_t{128} << 10U;  // the longest takes 64 KiB before it is packed
constexpr png_uint_32 kPixelChunk = 0x49444154;                // IDAT

// What is left of the file, and how much of it the row at hand may take. Without a bound the last row takes all that
// follows it, which can unpack to a thousand times the file.
struct Input {
  std::string_view left;
  std::size_t forTheRow = 0;
};

class Pixels final : public platform::Image {
 public:
  Pixels(std::size_t width, std::size_t height, std::vector<std::uint8_t> bytes)
      : width_(width), height_(height), bytes_(std::move(bytes)) {}

  std::size_t width() const override { return width_; }
  std::size_t height() const override { return height_; }
  std::span<const std::uint8_t> pixels() const override { return bytes_; }

 private:
  const std::size_t width_;
  const std::size_t height_;
  const std::vector<std::uint8_t> bytes_;
};

}  // namespace

// Static, because g++ lets functions of C out of an unnamed namespace, where they meet others of the same name.
extern "C" {

static void failed(png_structp png, png_const_charp) { png_longjmp(png, 1); }
static void ignored(png_structp, png_const_charp) {}

static void copyFromMemory(png_structp png, png_bytep to, std::size_t size) {
  auto& input = *static_cast<Input*>(png_get_io_ptr(png));
  if (size > input.left.size()) png_error(png, "the file ends too early");
  if (png_get_io_chunk_type(png) == kPixelChunk && (png_get_io_state(png) & PNG_IO_CHUNK_DATA) != 0) {
    if (size > input.forTheRow) png_error(png, "there are more data than pixels");
    input.forTheRow -= size;
  }
  std::memcpy(to, input.left.data(), size);
  input.left.remove_prefix(size);
}

}  // extern "C"

namespace {

class Decoder {
 public:
  explicit Decoder(std::string_view file)
      : fileSize_(file.size()),
        input_{file},
        png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, failed, ignored)) {
    if (png_) info_ = png_create_info_struct(png_);
  }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { png_destroy_read_struct(&png_, &info_, nullptr); }

  [[nodiscard]] std::shared_ptr<const platform::Image> decode() {
    if (!info_ || !guarded([this] { readHead(); }) || !isWithinLimits()) return nullptr;
    if (!guarded([this] { askForRgba(); }) || rowSize_ != std::size_t{width_} * 4) return nullptr;
    std::vector<std::uint8_t> pixels(rowSize_ * height_);
    rows_ = pixels.data();
    if (!guarded([this] { readRows(); })) return nullptr;
    return std::make_shared<Pixels>(width_, height_, std::move(pixels));
  }

 private:
  // Whether the step came to its end.
  template <class Step>
  [[nodiscard]] bool guarded(const Step step) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    step();
    return true;
  }

  void readHead() {
    png_set_read_fn(png_, &input_, copyFromMemory);
    png_set_user_limits(png_, PngImages::kLongestSide, PngImages::kLongestSide);
    png_set_chunk_malloc_max(png_, kLargestChunk);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);  // all but those that make the pixels
    png_read_info(png_, info_);
    width_ = png_get_image_width(png_, info_);
    height_ = png_get_image_height(png_, info_);
    packedRowSize_ = png_get_rowbytes(png_, info_);
  }

  [[nodiscard]] bool isWithinLimits() const {
    const std::uint64_t packed = (std::uint64_t{packedRowSize_} + 1) * height_;  // each row begins with its filter
    return std::uint64_t{width_} * height_ <= PngImages::kMostPixels && packed / kMostOutOfAByte <= fileSize_;
  }

  void askForRgba() {
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    png_set_add_alpha(png_, 0xff, PNG_FILLER_AFTER);
    passes_ = png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    rowSize_ = png_get_rowbytes(png_, info_);
  }

  void readRows() {
    for (int pass = 0; pass < passes_; ++pass) {
      for (std::uint32_t row = 0; row < height_; ++row) {
        input_.forTheRow = kMostForARow;
        png_read_row(png_, rows_ + row * rowSize_, nullptr);
      }
    }
    png_read_end(png_, nullptr);
  }

  const std::size_t fileSize_;
  Input input_;
  png_structp png_;
  png_infop info_ = nullptr;
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
  std::size_t packedRowSize_ = 0;
  std::size_t rowSize_ = 0;
  int passes_ = 0;
  std::uint8_t* rows_ = nullptr;
};

}  // namespace

std::shared_ptr<const platform::Image> decodePng(std::string_view file) {
  const auto* const start = reinterpret_cast<png_const_bytep>(file.data());
  if (file.size() < kSignature || png_sig_cmp(start, 0, kSignature) != 0) return nullptr;
  return Decoder(file).decode();
}

}  // namespace tavlo::linux_platform
