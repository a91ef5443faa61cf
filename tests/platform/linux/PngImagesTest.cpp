#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/linux/PngImages.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::decodePng;
using linux_platform::PngImages;

// A file of tests/oracles/png.py, and what it must become; no text for an image that is absent.
struct Sample {
  std::string name;
  std::string width;
  std::string height;
  std::string file;
  std::string pixels;
};

std::vector<Sample> samples(const std::string& mode) {
  std::vector<Sample> samples;
  for (const std::string& line : splitLines(runOracle("png.py", {mode}))) {
    Sample& sample = samples.emplace_back();
    std::istringstream(line) >> sample.name >> sample.width >> sample.height >> sample.file >> sample.pixels;
    sample.file = sample.file == "-" ? "" : fromHex(sample.file);
  }
  return samples;
}

std::string hexOf(std::span<const std::uint8_t> pixels) { return toHex(std::string(pixels.begin(), pixels.end())); }

// In a block of its own size, so that a sanitizer sees a step beyond its end.
std::shared_ptr<const platform::Image> decodeExactly(std::string_view file) {
  const std::vector<char> bytes(file.begin(), file.end());
  return decodePng({bytes.data(), bytes.size()});
}

void expectAsTold(const std::string& mode, std::size_t count) {
  const auto all = samples(mode);
  EXPECT_EQ(all.size(), count);
  for (const Sample& sample : all) {
    SCOPED_TRACE(sample.name);

    const auto image = decodeExactly(sample.file);

    EXPECT_EQ(image ? std::to_string(image->width()) : "-", sample.width);
    EXPECT_EQ(image ? std::to_string(image->height()) : "-", sample.height);
    EXPECT_EQ(image ? hexOf(image->pixels()) : "-", sample.pixels);
  }
}

// 3 pixels by 2: red, half of green, blue; black, white, nothing.
const std::string kSmall = fromHex(
    "89504e470d0a1a0a0000000d49484452000000030000000208060000009d74661a0000001b4944415478da63f8cfc0f09fa1"
    "010819fe0399201208189998190081bb09fe5d6cf78b0000000049454e44ae426082");
constexpr std::string_view kSmallPixels = "ff0000ff008000800000ffff000000ffffffffff01020300";

TEST(PngImages, EveryKindOfImageBecomesItsPixels) { expectAsTold("kinds", 208); }

TEST(PngImages, ADamagedFileIsAnImageOnlyIfItsPixelsAreSound) { expectAsTold("damaged", 46); }

TEST(PngImages, AnImageThatJustReachesALimitIsOne) {
  const auto all = samples("largest");
  EXPECT_EQ(all.size(), 5U);
  for (const Sample& sample : all) {
    SCOPED_TRACE(sample.name);

    const auto image = decodeExactly(sample.file);

    ASSERT_TRUE(image);
    EXPECT_EQ(std::to_string(image->width()), sample.width);
    EXPECT_EQ(std::to_string(image->height()), sample.height);
    ASSERT_EQ(image->pixels().size(), image->width() * image->height() * 4);
    EXPECT_EQ(hexOf(image->pixels().first(4)), sample.pixels);
    EXPECT_TRUE(std::ranges::equal(image->pixels().subspan(4), image->pixels().first(image->pixels().size() - 4)));
  }
}

TEST(PngImages, AFileBecomesItsPixelsRowByRow) {
  const TemporaryFolder folder;
  writeFile(folder / "small.png", kSmall);

  const auto image = PngImages().imageWithContentsOfFile((folder / "small.png").string());

  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 3U);
  EXPECT_EQ(image->height(), 2U);
  EXPECT_EQ(hexOf(image->pixels()), kSmallPixels);
}

TEST(PngImages, AFileWithAnyBitFlippedIsAbsent) {
  for (std::size_t bit = 0; bit < kSmall.size() * 8; ++bit) {
    std::string file = kSmall;
    file[bit / 8] = static_cast<char>(static_cast<unsigned char>(file[bit / 8]) ^ (1U << (bit % 8)));

    EXPECT_EQ(decodeExactly(file), nullptr) << "bit " << bit;
  }
}

TEST(PngImages, AFileCutAnywhereIsAbsent) {
  for (std::size_t length = 0; length < kSmall.size(); ++length) {
    EXPECT_EQ(decodeExactly(kSmall.substr(0, length)), nullptr) << "the first " << length;
  }
}

TEST(PngImages, WhatIsNoRegularFileIsAbsentAndDoesNotBlock) {
  const TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  writeFile(folder / "small.png", kSmall);
  PngImages images;

  EXPECT_EQ(images.imageWithContentsOfFile(std::nullopt), nullptr);
  EXPECT_EQ(images.imageWithContentsOfFile(""), nullptr);
  EXPECT_EQ(images.imageWithContentsOfFile((folder / "gone").string()), nullptr);
  EXPECT_EQ(images.imageWithContentsOfFile((folder / "fifo").string()), nullptr);
  EXPECT_EQ(images.imageWithContentsOfFile(folder.path().string()), nullptr);
  EXPECT_EQ(images.imageWithContentsOfFile("/dev/zero"), nullptr);
  EXPECT_EQ(images.imageWithContentsOfFile((folder / "small.png").string() + std::string("\0more", 5)), nullptr);
}

TEST(PngImages, AFileThatCannotBeReadIsAbsent) {
  const TemporaryFolder folder;
  writeFile(folder / "small.png", kSmall);
  for (const std::string_view failing : {"open", "fstat", "read"}) {
    SCOPED_TRACE(failing);
    FaultySyscalls syscalls(folder.path(),
                            [&](const std::string& call) { return call.starts_with(failing) ? EACCES : 0; });

    EXPECT_EQ(PngImages(syscalls).imageWithContentsOfFile((folder / "small.png").string()), nullptr);
  }
}

TEST(PngImages, TheLargestFileIsAnImageAndALargerOneIsNot) {
  const TemporaryFolder folder;
  writeFile(folder / "image.png", kSmall);
  PngImages images;

  std::filesystem::resize_file(folder / "image.png", PngImages::kLargestFile);
  EXPECT_NE(images.imageWithContentsOfFile((folder / "image.png").string()), nullptr);

  std::filesystem::resize_file(folder / "image.png", PngImages::kLargestFile + 1);
  EXPECT_EQ(images.imageWithContentsOfFile((folder / "image.png").string()), nullptr);
}

TEST(PngImages, AnImageOutlivesThePlatformThatLoadedIt) {
  const TemporaryFolder folder;
  writeFile(folder / "small.png", kSmall);
  auto images = std::make_unique<PngImages>();

  const auto image = images->imageWithContentsOfFile((folder / "small.png").string());
  images.reset();

  EXPECT_EQ(hexOf(image->pixels()), kSmallPixels);
}

TEST(PngImages, ManyThreadsDecodeAtOnce) {
  const TemporaryFolder folder;
  writeFile(folder / "small.png", kSmall);
  PngImages images;
  std::vector<std::thread> threads;

  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 100; ++round) {
        const auto image = images.imageWithContentsOfFile((folder / "small.png").string());
        EXPECT_EQ(image ? hexOf(image->pixels()) : "-", kSmallPixels);
        EXPECT_EQ(decodePng(std::string_view(kSmall).substr(0, 60)), nullptr);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace tavlo::test
