#include "bench/peers/LibPng.h"

#include <png.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace tavlo::bench::peers {
namespace {

[[noreturn]] void fail(const std::string& path) { throw std::runtime_error("libpng fails at " + path); }

// What the full interface works on. Its errors jump back to where setjmp() was called; no step has anything to destroy.
struct Reading {
  std::FILE* file = nullptr;
  png_structp png = nullptr;
  png_infop info = nullptr;

  ~Reading() {
    png_destroy_read_struct(&png, &info, nullptr);
    if (file) std::fclose(file);
  }
};

bool readHead(Reading& reading) {
  if (setjmp(png_jmpbuf(reading.png)) != 0) return false;
  png_init_io(reading.png, reading.file);
  png_read_info(reading.png, reading.info);
  png_set_expand(reading.png);
  png_set_scale_16(reading.png);
  png_set_gray_to_rgb(reading.png);
  png_set_add_alpha(reading.png, 0xff, PNG_FILLER_AFTER);
  static_cast<void>(png_set_interlace_handling(reading.png));
  png_read_update_info(reading.png, reading.info);
  return true;
}

bool readRows(Reading& reading, png_bytep* rows) {
  if (setjmp(png_jmpbuf(reading.png)) != 0) return false;
  png_read_image(reading.png, rows);
  png_read_end(reading.png, nullptr);
  return true;
}

}  // namespace

Pixels pngRead(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) fail(path);
  image.format = PNG_FORMAT_RGBA;
  Pixels pixels{.width = image.width, .height = image.height, .rgba = {}};
  pixels.rgba.resize(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, pixels.rgba.data(), 0, nullptr) == 0) fail(path);
  return pixels;
}

Pixels pngReadInFull(const std::string& path) {
  Reading reading;
  reading.file = std::fopen(path.c_str(), "rb");
  reading.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  if (!reading.file || !reading.png) fail(path);
  reading.info = png_create_info_struct(reading.png);
  if (!reading.info || !readHead(reading)) fail(path);
  Pixels pixels{.width = png_get_image_width(reading.png, reading.info),
                .height = png_get_image_height(reading.png, reading.info),
                .rgba = {}};
  pixels.rgba.resize(pixels.width * pixels.height * 4);
  std::vector<png_bytep> rows;
  for (std::size_t row = 0; row < pixels.height; ++row) rows.push_back(&pixels.rgba[row * pixels.width * 4]);
  if (!readRows(reading, rows.data())) fail(path);
  return pixels;
}

void pngWrite(const std::string& path, const Pixels& pixels) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(pixels.width);
  image.height = static_cast<png_uint_32>(pixels.height);
  image.format = PNG_FORMAT_RGBA;
  if (png_image_write_to_file(&image, path.c_str(), 0, pixels.rgba.data(), 0, nullptr) == 0) fail(path);
}

}  // namespace tavlo::bench::peers
