#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "cli/ImagePreview.h"

namespace tavlo::cli {
namespace {

using Pixels = std::vector<std::uint8_t>;

class Drawing final : public platform::Image {
 public:
  Drawing(std::size_t width, Pixels pixels) : width_(width), pixels_(std::move(pixels)) {}
  std::size_t width() const override { return width_; }
  std::size_t height() const override { return pixels_.size() / 4 / width_; }
  std::span<const std::uint8_t> pixels() const override { return pixels_; }

 private:
  const std::size_t width_;
  const Pixels pixels_;
};

Pixels repeated(const Pixels& pixel, std::size_t count) {
  Pixels all;
  for (std::size_t i = 0; i < count; ++i) all.insert(all.end(), pixel.begin(), pixel.end());
  return all;
}

const Pixels kWhite{255, 255, 255, 255};
const Pixels kBlack{0, 0, 0, 255};
const Pixels kClear{9, 9, 9, 0};

Pixels joined(const std::vector<Pixels>& parts) {
  Pixels all;
  for (const Pixels& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST(ImagePreview, BlocksHoldTwoPixelsEach) {
  const Drawing drawing(2, {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 1, 2, 3, 255});

  EXPECT_EQ(imagePreview(drawing, PreviewLook::blocks, 40),
            "\x1b[0;38;2;255;0;0;48;2;0;0;255m▀\x1b[0;38;2;0;255;0;48;2;1;2;3m▀\x1b[0m\n");
}

TEST(ImagePreview, BlocksOfOneColourShareTheirEscapes) {
  const Drawing drawing(3, repeated(kWhite, 6));

  EXPECT_EQ(imagePreview(drawing, PreviewLook::blocks, 40), "\x1b[0;38;2;255;255;255;48;2;255;255;255m▀▀▀\x1b[0m\n");
}

TEST(ImagePreview, WhatIsNotToBeSeenIsTheTerminalsOwnGround) {
  const Drawing drawing(4, joined({kWhite, kClear, kClear, kWhite, kClear, kWhite, kClear, kClear}));

  EXPECT_EQ(imagePreview(drawing, PreviewLook::blocks, 40),
            "\x1b[0;38;2;255;255;255m▀▄\x1b[0m \x1b[0;38;2;255;255;255m▀\x1b[0m\n");
}

TEST(ImagePreview, OddLastRowHasNothingBelow) {
  const Drawing drawing(1, repeated(kWhite, 3));

  EXPECT_EQ(imagePreview(drawing, PreviewLook::blocks, 40),
            "\x1b[0;38;2;255;255;255;48;2;255;255;255m▀\x1b[0m\n\x1b[0;38;2;255;255;255m▀\x1b[0m\n");
}

TEST(ImagePreview, CharactersAreFullerWhereItIsBrighter) {
  const Pixels grey{128, 128, 128, 255};
  const Drawing drawing(5, joined({kBlack, grey, kWhite, kWhite, kClear, kBlack, grey, kWhite, kBlack, kClear}));

  EXPECT_EQ(imagePreview(drawing, PreviewLook::characters, 40), ".+@+\n");
}

TEST(ImagePreview, HalfOpaqueIsSeenAndLessIsNot) {
  EXPECT_EQ(imagePreview(Drawing(1, {255, 255, 255, 128}), PreviewLook::characters, 40), "@\n");
  EXPECT_EQ(imagePreview(Drawing(1, {255, 255, 255, 127}), PreviewLook::characters, 40), "\n");
}

TEST(ImagePreview, WideImageIsScaledDownInItsProportions) {
  const Drawing drawing(80, joined({repeated(kWhite, 80 * 4), repeated(kBlack, 80 * 4)}));

  EXPECT_EQ(imagePreview(drawing, PreviewLook::characters, 100),
            std::string(40, '@') + "\n" + std::string(40, '.') + "\n");
  EXPECT_EQ(imagePreview(drawing, PreviewLook::characters, 20), std::string(20, '+') + "\n");
}

// The mean weighs what is seen, so that the colour of clear pixels does not show.
TEST(ImagePreview, ScaledColoursAreMeans) {
  EXPECT_EQ(imagePreview(Drawing(2, {200, 100, 0, 255, 100, 0, 0, 255}), PreviewLook::blocks, 1),
            "\x1b[0;38;2;150;50;0m▀\x1b[0m\n");
  EXPECT_EQ(imagePreview(Drawing(2, {200, 100, 0, 255, 0, 0, 255, 1}), PreviewLook::blocks, 1),
            "\x1b[0;38;2;199;100;1m▀\x1b[0m\n");
  EXPECT_EQ(imagePreview(Drawing(2, {200, 100, 0, 255, 0, 0, 255, 0}), PreviewLook::blocks, 1), " \n");
}

TEST(ImagePreview, HighImageOfOneColumnHasAtLeastOneLine) {
  EXPECT_EQ(imagePreview(Drawing(3, repeated(kWhite, 3)), PreviewLook::characters, 1), "@\n");
  EXPECT_EQ(imagePreview(Drawing(1, repeated(kWhite, 1)), PreviewLook::characters, 0), "@\n");
}

}  // namespace
}  // namespace tavlo::cli
